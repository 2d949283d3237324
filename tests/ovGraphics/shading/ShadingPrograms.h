// Small programs in both languages for the tests of the cross compiler.
#pragma once

#include <gtest/gtest.h>
#include <ovGraphics/shading/CrossCompiler.h>

namespace ovGraphics::shading {

inline constexpr SHADER_LANGUAGE BOTH_LANGUAGES[] = {SHADER_LANGUAGE::GLSL, SHADER_LANGUAGE::HLSL};

inline const char* getLanguageName(SHADER_LANGUAGE language) {
    return language == SHADER_LANGUAGE::HLSL ? "HLSL" : "GLSL";
}

/// The full-screen quad's vertex program in both languages.
inline constexpr const char* QUAD_VERTEX = R"(
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; float2 uvs : TEXCOORD; };
struct PixelInput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
PixelInput main(VertexInput input) {
    PixelInput result;
    result.position = input.position;
    result.uvs = input.uvs;
    return result;
}
#else
in vec4 POSITION;
in vec2 TEXCOORD;
out vec2 PIX_TEXCOORD;
void main () {
    gl_Position = POSITION;
    PIX_TEXCOORD = TEXCOORD;
}
#endif
)";

/// A pixel program of declarations and statements that both languages share; the statements see PIX_TEXCOORD
/// and end with ovReturn.
inline ovMemory::String makePixelText(const ovMemory::String& declarations,
                                      const ovMemory::String& statements) {
    return declarations + R"(
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
#define PIX_TEXCOORD input.uvs
float4 main(PixelInput input) : SV_TARGET {
#else
in vec2 PIX_TEXCOORD;
out vec4 OUT_COLOR;
void main () {
#endif
)" + statements +
           "\n}\n";
}

inline ProgramText makeProgram(SHADER_LANGUAGE language, ovMemory::String vertex, ovMemory::String pixel) {
    ProgramText text;
    text.name = "program";
    text.language = language;
    text.crossCompilerDefines = true;
    text.vertex.text = std::move(vertex);
    text.pixel.text = std::move(pixel);
    return text;
}

/// Compiles for one language; the program must come without an error and without a warning.
inline CompiledProgram compileOrFail(const ProgramText& text) {
    CompileResult result = compile(text);
    EXPECT_EQ(result.error, "") << getLanguageName(text.language);
    EXPECT_EQ(result.warning, "") << getLanguageName(text.language);
    EXPECT_EQ(result.program == nullptr, !result.error.empty());
    return result ? *result.program : CompiledProgram();
}

/// Compiles for both languages, whose interfaces must be equal. @return the GLSL one
inline CompiledProgram compileBoth(const ovMemory::String& vertex, const ovMemory::String& pixel) {
    const CompiledProgram glsl = compileOrFail(makeProgram(SHADER_LANGUAGE::GLSL, vertex, pixel));
    CompiledProgram hlsl = compileOrFail(makeProgram(SHADER_LANGUAGE::HLSL, vertex, pixel));
    hlsl.vertexText = glsl.vertexText;
    hlsl.pixelText = glsl.pixelText;
    EXPECT_TRUE(glsl == hlsl) << "the interfaces differ:\n" << vertex << pixel;
    return glsl;
}

} // namespace ovGraphics::shading
