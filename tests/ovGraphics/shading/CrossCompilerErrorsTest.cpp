// What compile says of texts that do not compile.
#include <ovGraphics/shading/CrossCompiler.h>

#include <ovGraphics/shading/ShadingPrograms.h>
#include <regex>

namespace ovGraphics::shading {

using ovMemory::String;

namespace {

constexpr SHADER_LANGUAGE GLSL = SHADER_LANGUAGE::GLSL;
constexpr SHADER_LANGUAGE HLSL = SHADER_LANGUAGE::HLSL;

struct ErrorCase {
    const char* name;
    SHADER_LANGUAGE language;
    const char* vertex; ///< null for the quad's
    const char* pixel;
    const char* expected;
};

/// The file and line that a message names, found by a regular expression; empty when it names none.
String placeIn(const String& message) {
    std::smatch found;
    const std::regex place("(source|my/file.ovsl):[0-9]+(?=: )");
    return std::regex_search(message, found, place) ? found.str() : String();
}

const ErrorCase ERROR_CASES[] = {
    {"glslLine", GLSL, nullptr, "out vec4 OUT_COLOR;\nvoid main () {\n    OUT_COLOR = foo;\n}\n",
     "pixel stage of program 'program': source:3: 'foo' : undeclared identifier"},
    {"glslLineDirective", GLSL, nullptr,
     "out vec4 OUT_COLOR;\n#line 50 \"my/file.ovsl\"\nvoid main () {\n    OUT_COLOR = foo;\n}\n",
     "pixel stage of program 'program': my/file.ovsl:51: 'foo' : undeclared identifier"},
    {"glslFirstLine", GLSL, nullptr, "foo bar;", "pixel stage of program 'program': source:1: "},
    {"glslVertex", GLSL, "\n\nvoid main () { gl_Position = foo; }",
     "out vec4 OUT_COLOR; void main () { OUT_COLOR = vec4(1.0); }",
     "vertex stage of program 'program': source:3: 'foo' : undeclared identifier"},
    {"glslSyntax", GLSL, nullptr, "\n\nvoid main () {\n    int a = 1\n}\n",
     "source:5: '' :  syntax error, unexpected RIGHT_BRACE"},
    {"hlslLine", HLSL, nullptr, "float4 main() : SV_TARGET {\n\n    return foo;\n}\n",
     "pixel stage of program 'program': source:3: 'foo' : unknown variable"},
    {"hlslLineDirective", HLSL, nullptr,
     "#line 50 \"my/file.ovsl\"\nfloat4 main() : SV_TARGET {\n    return foo;\n}\n",
     "pixel stage of program 'program': my/file.ovsl:51: 'foo' : unknown variable"},
    {"hlslSyntax", HLSL, nullptr, "float4 main() : SV_TARGET {\n    float a = 1.0\n    return a;\n}\n",
     "source:3: ';' : Expected"},
    {"hlslVertex", HLSL, "\n\nfloat4 main() : SV_POSITION { return foo; }",
     "float4 main() : SV_TARGET { return 1.0; }",
     "vertex stage of program 'program': source:3: 'foo' : unknown variable"},
    {"glslEmpty", GLSL, nullptr, "", "pixel stage of program 'program': the text has no function 'main'"},
    {"hlslEmpty", HLSL, nullptr, "", "pixel stage of program 'program': the text has no function 'main'"},
    {"glslNoMain", GLSL, nullptr, "void mane () {}", "the text has no function 'main'"},
    {"hlslNoMain", HLSL, nullptr, "float4 mane() : SV_TARGET { return 1.0; }",
     "the text has no function 'main'"},
    {"glslUnterminatedComment", GLSL, nullptr, "void main () { /* never ends",
     "source:1: 'comment' : End of input in comment"},
    {"hlslUnterminatedComment", HLSL, nullptr, "float4 main() : SV_TARGET { /* never ends",
     "source:1: 'comment' : End of input in comment"},
    {"glslUnterminatedIf", GLSL, nullptr, "#if 1\nvoid main () {}\n", "missing #endif"},
    {"hlslUnterminatedIf", HLSL, nullptr, "#if 1\nfloat4 main() : SV_TARGET { return 1.0; }\n",
     "missing #endif"},
    {"glslUnterminatedBlock", GLSL, nullptr, "void main () {", "source:1: "},
    {"hlslUnterminatedBlock", HLSL, nullptr, "float4 main() : SV_TARGET {", "source:1: "},
    {"glslInclude", GLSL, nullptr, "\n#include \"x.h\"\nvoid main () {}\n", "source:2: '#include'"},
    {"hlslInclude", HLSL, nullptr, "\n#include \"x.h\"\nfloat4 main() : SV_TARGET { return 1.0; }\n",
     "source:2: '#include'"},
    {"glslRecursion", GLSL, nullptr,
     "float f(float x);\nfloat g(float x) { return f(x); }\nfloat f(float x) { return g(x); }\nout vec4 "
     "OUT_COLOR;\nvoid "
     "main () { OUT_COLOR = vec4(f(1.0)); }\n",
     "Recursion detected"},
    {"hlslRecursion", HLSL, nullptr,
     "float f(float x);\nfloat g(float x) { return f(x); }\nfloat f(float x) { return g(x); }\nfloat4 main() "
     ": "
     "SV_TARGET { return f(1.0); }\n",
     "Recursion detected"},
    {"glslVersion", GLSL, nullptr, "#version 450\nvoid main () {}\n", "source:1: '#version'"},
    {"glslErrorDirective", GLSL, nullptr, "\n#error choose an operator\n",
     "source:2: '#error' : choose an operator"},
    {"hlslErrorDirective", HLSL, nullptr, "\n#error choose an operator\n",
     "source:2: '#error' : choose an operator"},
    {"glslMissingInput", GLSL, nullptr,
     "in vec3 PIX_NORMAL;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = PIX_NORMAL.xyzz; }\n",
     "pixel stage of program 'program': the input 'PIX_NORMAL' is not written by the vertex stage"},
    {"hlslMissingInput", HLSL, nullptr, "float4 main(float3 n : PIX_NORMAL) : SV_TARGET { return n.xyzz; }\n",
     "pixel stage of program 'program': the input 'PIX_NORMAL' is not written by the vertex stage"},
    {"glslOtherInputType", GLSL, nullptr,
     "in vec3 PIX_TEXCOORD;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = PIX_TEXCOORD.xyzz; }\n",
     "the input 'PIX_TEXCOORD' is float x 3 x 1 (scalar x components x locations); the vertex stage writes "
     "float x 2 x 1"},
    {"glslLooseUniform", GLSL, nullptr,
     "uniform float x;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = vec4(x); }\n",
     "source:1: 'non-opaque uniforms outside a block'"},
    {"hlslLooseUniform", HLSL, nullptr, "float x;\nfloat4 main() : SV_TARGET { return x; }\n",
     "'x' is declared outside a constant buffer; make it static or put it into one"},
    {"hlslPackedBuffer", HLSL, nullptr,
     "cbuffer C : register(b0) { float a; float2 b; };\nfloat4 main() : SV_TARGET { return a + b.x; }\n",
     "the member 'b' of the constant buffer 'C' starts at byte 4, in GLSL it would at 8; use members of "
     "whole registers"},
    {"glslSlotTooHigh", GLSL, nullptr,
     "ovConstantBufferDecl(C, 14) { ovFloat4 a; };\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = a; }\n",
     "the constant buffer 'C' has slot 14; slots 0 to 13 are offered"},
    {"glslStorage", GLSL, nullptr,
     "layout(binding = 0, std430) buffer B { float a; } b;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = "
     "vec4(b.a); }\n",
     "the storage buffer 'B' is not offered to programs"},
    {"glslNestedTooDeep", GLSL, nullptr, "NESTED_GLSL",
     "source:1: brackets are nested deeper than 128 levels"},
    {"hlslNestedTooDeep", HLSL, nullptr, "NESTED_HLSL",
     "source:1: brackets are nested deeper than 128 levels"},
    {"glslMegabytes", GLSL, nullptr, "MEGABYTES", "bytes long with its defines; 262144 are allowed"},
    {"hlslMegabytes", HLSL, nullptr, "MEGABYTES", "bytes long with its defines; 262144 are allowed"},
    {"glslBinary", GLSL, nullptr, "BINARY", "source:1: "},
    {"hlslBinary", HLSL, nullptr, "BINARY", "source:1: "},
};

String makeHostileText(const String& kind) {
    if (kind.rfind("NESTED", 0) == 0) {
        const String nested = String(5000, '(') + "1.0" + String(5000, ')');
        return kind == "NESTED_HLSL" ? "float4 main() : SV_TARGET { return " + nested + "; }"
                                     : "void main () { float x = " + nested + "; }";
    }
    if (kind == "MEGABYTES") {
        return String(4u << 20, 'a');
    }
    String binary;
    for (unsigned int i = 0, random = 1; kind == "BINARY" && i < 4096;
         ++i, random = random * 1664525u + 1013904223u) {
        const char byte = static_cast<char>(random >> 24);
        binary += byte == '\n' ? ' ' : byte;
    }
    return kind == "BINARY" ? binary : kind;
}

TEST(CrossCompilerErrors, ErrorsNameProgramStageAndTheAuthorsLine) {
    for (const ErrorCase& row : ERROR_CASES) {
        SCOPED_TRACE(row.name);
        const CompileResult result = compile(
            makeProgram(row.language, row.vertex ? row.vertex : QUAD_VERTEX, makeHostileText(row.pixel)));
        EXPECT_FALSE(result);
        EXPECT_EQ(result.error.rfind("Could not compile the ", 0), 0u) << result.error;
        EXPECT_NE(result.error.find(row.expected), String::npos) << result.error;
        EXPECT_EQ(result.error.find('\n'), String::npos) << result.error;
        EXPECT_EQ(result.place, placeIn(result.error)) << result.error;
    }
}

TEST(CrossCompilerErrors, DefinesMustBeOneLine) {
    const struct {
        Define define;
        const char* expected;
    } rows[] = {{{"", "1"}, "the define '' is no identifier"},
                {{"A B", "1"}, "the define 'A B' is no identifier"},
                {{"1A", "1"}, "the define '1A' is no identifier"},
                {{"A", "1\nfoo"}, "the value of the define 'A' holds a line end"},
                {{"A", "1\\"}, "the value of the define 'A' holds a line end, a backslash"},
                {{"A", "1 /*"}, "the value of the define 'A' holds a line end, a backslash or a comment"}};
    for (const auto& row : rows) {
        ProgramText text = makeProgram(GLSL, QUAD_VERTEX, makePixelText("", "ovReturn(PIX_TEXCOORD.xyxy);"));
        text.pixel.defines = {row.define};
        EXPECT_NE(compile(text).error.find(row.expected), String::npos) << compile(text).error;
    }
}

TEST(CrossCompilerErrors, SlotsOfOtherContentsAreErrors) {
    const String vertex = String("ovConstantBufferDecl(V, 0) { ovFloat4 value; };\n") + R"(
#ifdef OV_HLSL
float4 main(float4 position : POSITION, out float2 uvs : PIX_TEXCOORD) : SV_POSITION { uvs = value.xy; return position; }
#else
in vec4 POSITION;
out vec2 PIX_TEXCOORD;
void main () { gl_Position = POSITION; PIX_TEXCOORD = value.xy; }
#endif
)";
    const struct {
        const char* declarations;
        const char* color;
        const char* expected;
    } rows[] = {
        {"ovConstantBufferDecl(P, 0) { ovFloat4 other; };\n", "other",
         "the constant buffer 'P' of slot 0 holds (float 1x4 other at 0), but the vertex stage's 'V'"},
        {"ovConstantBufferDecl(P, 0) { ovFloat4x4 value; };\n", "value[0]",
         "the constant buffer 'P' of slot 0 holds"},
        {"ovConstantBufferDecl(P, 0) { ovInt4 value; };\n", "ovFloat4(1.0, 1.0, 1.0, 1.0) * float(value.x)",
         "the constant buffer 'P' of slot 0 holds"},
        {"ovConstantBufferDecl(P, 1) { ovFloat4 a; };\novConstantBufferDecl(Q, 1) { ovFloat4 b; };\n",
         "a + b", "have the same slot 1"},
        {"ovTexture2dDecl(a, 1);\novTexture2dDecl(b, 1);\novSamplerDecl(s, 0);\n",
         "ovSample(a, s, PIX_TEXCOORD) + ovSample(b, s, PIX_TEXCOORD)", "have the same slot 1"},
        {"ovTexture2dDecl(a, 1);\novSamplerDecl(s, 2);\novSamplerDecl(t, 2);\n",
         "ovSample(a, s, PIX_TEXCOORD) + ovSample(a, t, PIX_TEXCOORD)", "have the same slot 2"},
    };
    for (const auto& row : rows) {
        for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
            const CompileResult result = compile(makeProgram(
                language, vertex, makePixelText(row.declarations, String("ovReturn(") + row.color + ");")));
            EXPECT_NE(result.error.find(row.expected), String::npos) << result.error;
        }
    }
}

TEST(CrossCompilerErrors, DefinesDoNotMoveLines) {
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        for (const bool macros : {true, false}) {
            ProgramText text = makeProgram(language, QUAD_VERTEX, "\n\nfoo bar;\n");
            text.crossCompilerDefines = macros;
            text.vertex.text = language == HLSL
                                   ? "float4 main(float4 p : POSITION) : SV_POSITION { return p; }"
                                   : "in vec4 POSITION; void main () { gl_Position = POSITION; }";
            for (int i = 0; i < 200; ++i) {
                text.pixel.defines.push_back({"OPTION_" + std::to_string(i), i % 2 ? "" : std::to_string(i)});
            }
            EXPECT_NE(compile(text).error.find("source:3: "), String::npos) << compile(text).error;
        }
    }
}

} // namespace

} // namespace ovGraphics::shading
