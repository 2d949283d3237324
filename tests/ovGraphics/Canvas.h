// What the drawing tests of this library share: a compositor that draws, and texts of programs.
#pragma once

#include <functional>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>

/// A compositor of one node in a context that draws into a texture.
struct Canvas {
    explicit Canvas(ovGraphics::System& graphics, ovGraphics::Texture* target = nullptr)
        : system(graphics) {
        context->setName("canvas");
        context->setDescriptor({.texture = target});
        context->setCompositor(compositor.get());
    }

    ovGraphics::CompositorOperationsBlock* addBlock() { return node->appendOperationsBlock(); }
    /// A block that draws a shader into one mip of one slice.
    ovGraphics::CompositorOperationsBlock* addDraw(ovGraphics::Shader& shader,
                                                   ovGraphics::Texture* target = nullptr,
                                                   unsigned int slice = 0, unsigned int mip = 0) {
        ovGraphics::CompositorOperationsBlock* block = addBlock();
        if (target)
            block->setTarget(0, target, slice, mip);
        block->appendPostProcessPass()->setShader(&shader);
        return block;
    }
    bool frame() { return system.frame(context.get()); }

    ovGraphics::System& system;
    ovMemory::UniquePtr<ovGraphics::Compositor> compositor = ovGraphics::Compositor::create(&system);
    ovMemory::UniquePtr<ovGraphics::RenderContext> context = ovGraphics::RenderContext::create(&system);
    ovGraphics::CompositorNode* node = compositor->appendNode();
};

/// A pass that runs code of the application.
class CodePass : public ovGraphics::CompositorPass {
public:
    explicit CodePass(std::function<bool()> code)
        : CompositorPass("code")
        , _code(std::move(code)) {}
    bool execute(const ovGraphics::PassExecution&) override { return _code(); }

private:
    std::function<bool()> _code;
};

/// A vertex text of the full-screen quad that hands PIX_TEXCOORD on.
inline constexpr ovMemory::StringView QUAD_VERTEX_TEXT = R"(
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; float2 uvs : TEXCOORD; };
struct VertexOutput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
VertexOutput main(VertexInput input) {
    VertexOutput output;
    output.position = input.position;
    output.uvs = input.uvs;
    return output;
}
#else
in vec4 POSITION;
in vec2 TEXCOORD;
out vec2 PIX_TEXCOORD;
void main() {
    gl_Position = POSITION;
    PIX_TEXCOORD = TEXCOORD;
}
#endif
)";

/// A pixel text of statements about PIX_TEXCOORD and the declarations.
inline ovMemory::String pixelTextOf(ovMemory::StringView statements, ovMemory::StringView declarations) {
    ovMemory::String text(declarations);
    text += R"(
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
#define PIX_TEXCOORD input.uvs
float4 main(PixelInput input) : SV_TARGET
#else
in vec2 PIX_TEXCOORD;
out vec4 OUT_COLOR;
void main()
#endif
{ )";
    text.append(statements).append(" }\n");
    return text;
}

/// One that returns an expression.
inline ovMemory::String pixelText(ovMemory::StringView expression, ovMemory::StringView declarations = "") {
    return pixelTextOf("ovReturn(" + ovMemory::String(expression) + ");", declarations);
}

/// An unloaded program of dual-dialect texts.
inline ovMemory::UniquePtr<ovGraphics::Program>
makeUnloadedProgram(ovGraphics::System& system, ovMemory::StringView pixel,
                    ovMemory::StringView vertex = QUAD_VERTEX_TEXT) {
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(vertex);
    sources.setPixelMemory(pixel);
    ovMemory::UniquePtr<ovGraphics::Program> program = ovGraphics::Program::create(&system);
    program->setName("TEST_PROGRAM");
    program->setSources(sources);
    program->setActivateCrossCompilerDefines(true);
    return program;
}

/// A loaded shader with a program of its own.
struct TestShader {
    TestShader(ovGraphics::System& system, ovMemory::StringView pixel,
               ovMemory::StringView vertex = QUAD_VERTEX_TEXT)
        : program(makeUnloadedProgram(system, pixel, vertex))
        , shader(ovGraphics::Shader::create(&system)) {
        shader->setName("TEST_SHADER");
        shader->setProgram(program.get());
        loaded = program->load() && shader->load();
    }
    ovGraphics::Shader& operator*() const { return *shader; }
    ovGraphics::Shader* operator->() const { return shader.get(); }

    ovMemory::UniquePtr<ovGraphics::Program> program;
    ovMemory::UniquePtr<ovGraphics::Shader> shader;
    bool loaded = false;
};

// Texts that several tests draw.
inline const ovMemory::String UV_TEXT = pixelText("ovFloat4(PIX_TEXCOORD, 0.25, 1.0)");
inline const ovMemory::String CONSTANT_TEXT =
    pixelText("colour", "ovConstantBufferDecl(constants, 0) { ovFloat4 colour; };\n");
inline const ovMemory::String SAMPLE_TEXT = pixelText(
    "ovSample(image, state, PIX_TEXCOORD)", "ovTexture2dDecl(image, 0);\novSamplerDecl(state, 0);\n");
