// A full-screen effect of one's own, without the effects library: one shader text for both languages, drawn
// by two graphics systems, one of each language. Writes the picture of the first and prints how far the two
// are apart.
//
//     CustomEffectShader OUTPUT.png
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/CompositorPass.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <ovLog/ConsoleLogger.h>
#include <ovVeldris/shaders/PostProcessingLib.h>

namespace {

// Rings around a centre, in two colours. The macros that begin with ov are defined for each language; what
// has no common form, here the interface of the stage, stands under OV_HLSL and OV_GLSL.
constexpr ovMemory::StringView RINGS = R"(
ovConstantBufferDecl(constants, 0) {
    ovFloat4 centreAndCount; // x, y: centre in texture coordinates; z: rings across the picture
    ovFloat4 tint;
};

#ifdef OV_HLSL
struct PixelInput {
    float4 position : SV_POSITION;
    float2 uvs : PIX_TEXCOORD;
};
#define PIX_TEXCOORD input.uvs
float4 main(PixelInput input) : SV_TARGET
#else
in vec2 PIX_TEXCOORD;
out vec4 OUT_COLOR;
void main()
#endif
{
    float radius = length(PIX_TEXCOORD - centreAndCount.xy);
    float ring = ovSaturate(0.5 + 4.0 * (ovFrac(radius * centreAndCount.z) - 0.5));
    ovReturn(ovFloat4(ovLerp(ovFloat3(PIX_TEXCOORD, 0.25), tint.xyz, ring), 1.0));
}
)";

ovGraphics::Shader* makeShader(ovGraphics::System& graphics) {
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(ovVeldris::PostProcessingLib::ovPostProcessDefaultVertex());
    sources.setPixelMemory(RINGS);
    ovGraphics::Program* program = graphics.getProgramManager()->createOrRetrieve("rings");
    program->setSources(sources);
    program->setActivateCrossCompilerDefines(true); // the ov macros
    if (!program->load())
        return nullptr;

    ovGraphics::Shader* shader = graphics.getShaderManager()->createOrRetrieve("rings");
    shader->setProgram(program);
    ovGraphics::ConstantBuffer* constants = shader->addConstantBuffer(0, 0);
    constants->addPassMemorySlot()->setFromVector({0.5f, 0.5f, 12.0f, 0.0f});
    constants->addPassMemorySlot()->setFromVector({0.9f, 0.8f, 0.6f, 0.0f});
    return shader->load() ? shader : nullptr;
}

// Opens a system of the language and draws the shader once. Null when anything failed; the log says what.
ovMemory::UniquePtr<ovImages::Image> draw(ovGraphics::SHADER_LANGUAGE language, ovLog::Logger& logger) {
    ovGraphics::Configuration configuration;
    configuration.language = language;
    configuration.logger = &logger;
    ovGraphics::System graphics;
    if (!graphics.initialize(configuration))
        return nullptr;

    ovGraphics::Texture* target = graphics.getTextureManager()->createOrRetrieve("target");
    target->setWidth(256);
    target->setHeight(256);
    target->setUsableAsRenderTarget(true);
    ovGraphics::Shader* shader = makeShader(graphics);
    if (!shader || !target->load())
        return nullptr;

    ovGraphics::Compositor* compositor = graphics.getCompositorManager()->createOrRetrieve("rings");
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, target);
    block->appendPostProcessPass()->setShader(shader);
    ovGraphics::RenderContext* context =
        graphics.getRenderContextManager()->createOrRetrieve("rings", {.texture = target});
    context->setCompositor(compositor);
    return graphics.frame(context) ? target->convertToImage() : nullptr;
}

int getLargestDifference(const ovImages::Image& a, const ovImages::Image& b) {
    int largest = 0;
    for (std::size_t i = 0; i < a.getBytes().size(); ++i)
        largest = std::max(largest, std::abs(a.getBytes()[i] - b.getBytes()[i]));
    return largest;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: CustomEffectShader OUTPUT.png\n");
        return 1;
    }
    ovLog::ConsoleLogger logger;
    const auto glsl = draw(ovGraphics::SHADER_LANGUAGE::GLSL, logger);
    const auto hlsl = draw(ovGraphics::SHADER_LANGUAGE::HLSL, logger);
    if (!glsl || !hlsl)
        return 1;

    const int difference = getLargestDifference(*glsl, *hlsl);
    std::printf("largest difference between GLSL and HLSL: %d of 255\n", difference);

    const ovMemory::Result written = ovImages::CompositeEncoder().encodeFile(argv[1], glsl->view());
    if (!written) {
        std::fprintf(stderr, "CustomEffectShader: %s\n", written.error.c_str());
        return 1;
    }
    return difference <= 1 ? 0 : 1;
}
