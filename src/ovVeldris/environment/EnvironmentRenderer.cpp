#include <ovVeldris/environment/EnvironmentRenderer.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/OneShotFrame.h>
#include <ovVeldris/environment/detail/CubeFaces.h>
#include <ovVeldris/environment/detail/ToolTarget.h>
#include <ovVeldris/shaders/GeometryLib.h>
#include <ovVeldris/shaders/PostProcessingLib.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

struct EnvironmentRenderer::SphericalData {
    ovMemory::UniquePtr<ovGraphics::Sampler> sampler;
    ovMemory::UniquePtr<ovGraphics::Program> program;
};

namespace {

using ovGraphics::FORMAT;
using ovGraphics::TEXTURE_TYPE;
using ovGraphics::TextureUtils;

constexpr ovMemory::StringView SPHERICAL_NAME = "OV_SPHERICAL_MAP_RENDERER";

// Names and axes of the six cameras; along y the usual up vector would be the direction itself.
const CubeFaceViews& faceViews() {
    static const CubeFaceViews VIEWS = {{
        {"OV_CUBEMAP_RENDERER_0", {1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}},
        {"OV_CUBEMAP_RENDERER_1", {-1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}},
        {"OV_CUBEMAP_RENDERER_2", {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, -1.0f}},
        {"OV_CUBEMAP_RENDERER_3", {0.0f, -1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}},
        {"OV_CUBEMAP_RENDERER_4", {0.0f, 0.0f, 1.0f}, {0.0f, 1.0f, 0.0f}},
        {"OV_CUBEMAP_RENDERER_5", {0.0f, 0.0f, -1.0f}, {0.0f, 1.0f, 0.0f}},
    }};
    return VIEWS;
}

ovMemory::UniquePtr<ovGraphics::Program> makeSphericalProgram(ovGraphics::System* graphicsSystem) {
    static const ovMemory::String pixelText = assembleShaderText({
        {"GeometryLib.ovUvToDirection.ovsl", GeometryLib::ovUvToDirection()},
        {"EnvironmentRenderer.sphericalMap.pixel.ovsl", embedded::EnvironmentRenderer_sphericalMap_pixel},
    });
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(PostProcessingLib::ovPostProcessDefaultVertex());
    sources.setPixelMemory(pixelText);
    auto program = ovGraphics::Program::create(graphicsSystem);
    program->setName(SPHERICAL_NAME);
    program->setActivateCrossCompilerDefines(true);
    program->setSources(sources);
    return program;
}

/// Draws the nodes of a compositor that draw the first mip of a texture, and fills the others.
void drawWithMips(ovGraphics::Compositor& compositor, ovGraphics::Texture& output) {
    // Mips are averages of what was drawn, so only a frame that was drawn has any.
    if (drawOneShotFrame(compositor, output))
        output.generateMips();
}

} // namespace

EnvironmentRenderer::EnvironmentRenderer(System* system)
    : _system(system) {}

EnvironmentRenderer::~EnvironmentRenderer() = default;

void EnvironmentRenderer::renderCubemap(ovGraphics::Texture* output, ovGraphics::Shader* shader,
                                        unsigned int resolution, FORMAT format) {
    if (!_checkCubemapRequest(output, shader))
        return;
    const ToolTarget target{.type = TEXTURE_TYPE::CUBE,
                            .format = format,
                            .gammaCorrected = format != TextureUtils::getFormatSrgbEquivalent(format),
                            .width = resolution,
                            .height = resolution,
                            .mipsAreGenerated = true};
    if (!loadToolTarget(*output, target)) {
        _log("Error while loading the cubemap to render the effect in. Aborting generation.");
        return;
    }
    // Cameras and compositor live for this call only. A cube is rendered rarely, and what stayed would have
    // to follow a graphics system that is replaced.
    const CubeFaceCameras cameras = makeCubeFaceCameras(_getGraphicsSystem(), faceViews());
    const auto compositor = ovGraphics::Compositor::create(_getGraphicsSystem());
    compositor->setName("OV_CUBEMAP_RENDERER");
    appendCubeFaces(*compositor->appendNode(), *output, 0, cameras, *shader);
    drawWithMips(*compositor, *output);
}

void EnvironmentRenderer::cubemapToSphericalMap(ovGraphics::Texture* output, ovGraphics::Texture* input,
                                                unsigned int width, unsigned int height) {
    if (!_checkSphericalRequest(output, input) || !_setupData())
        return;
    const FORMAT format =
        // Nothing can be drawn to compressed formats.
        TextureUtils::isFormatCompressed(input->getFormat()) ? FORMAT::R8G8B8A8_UNORM : input->getFormat();
    const ToolTarget target{.format = format,
                            .gammaCorrected = input->getGammaCorrected(),
                            .width = width,
                            .height = height,
                            .mipsAreGenerated = true};
    if (!loadToolTarget(*output, target)) {
        _log("Error while loading the spherical map to render the cubemap in. Aborting generation.");
        return;
    }
    // A shader for each call and a program for all: bindings are cheap, and a kept shader would still borrow
    // the last input.
    const auto shader = ovGraphics::Shader::create(_getGraphicsSystem());
    shader->setName(SPHERICAL_NAME);
    shader->setTexture(input, 0, 0);
    shader->setProgram(_sphericalData->program.get());
    shader->setSampler(_sphericalData->sampler.get(), 0, 0);
    shader->load();
    const auto compositor = ovGraphics::Compositor::create(_getGraphicsSystem());
    compositor->setName(SPHERICAL_NAME);
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, output);
    block->appendPostProcessPass()->setShader(shader.get());
    drawWithMips(*compositor, *output);
}

System* EnvironmentRenderer::getSystem() const {
    return _system.get();
}

ovGraphics::System* EnvironmentRenderer::_getGraphicsSystem() const {
    return graphicsSystemOf(_system.get());
}

bool EnvironmentRenderer::_checkCubemapRequest(const ovGraphics::Texture* output,
                                               const ovGraphics::Shader* shader) const {
    const ovGraphics::System* const graphicsSystem = _getGraphicsSystem();
    ovMemory::StringView problem;
    if (!output || !shader)
        problem = "Missing output texture or shader to render a cube map. Aborting.";
    else if (!graphicsSystem || output->getSystem() != graphicsSystem ||
             shader->getSystem() != graphicsSystem)
        // "outout" is how this line has always read; hosts filter the log by it.
        problem = "The outout texture or the shader come from a different system than the renderer's one. "
                  "Aborting.";
    else if (!shader->getLoadedProgram())
        problem =
            "The shader to render a cube map with is not loaded, load it and its program first. Aborting.";
    if (!problem.empty())
        _log(problem);
    return problem.empty();
}

bool EnvironmentRenderer::_checkSphericalRequest(const ovGraphics::Texture* output,
                                                 const ovGraphics::Texture* input) const {
    const ovGraphics::System* const graphicsSystem = _getGraphicsSystem();
    ovMemory::StringView problem;
    if (!input || !output)
        problem = "The input, or output texture is nullptr, cannot convert the cubemap to a spherical map. "
                  "Aborting.";
    else if (input->isUnloaded() || input->getTexType() != TEXTURE_TYPE::CUBE)
        problem =
            "The input texture for spherical map conversion is either not loaded, either not a cubemap. "
            "Aborting.";
    else if (input->getSystem() != graphicsSystem || output->getSystem() != graphicsSystem)
        problem =
            "Input and output textures are not from the same graphics system as the renderer. Aborting.";
    else if (input == output)
        problem = "The input texture for spherical map conversion is the output texture too, convert it into "
                  "another one. Aborting.";
    else if (holdsWholeNumbers(input->getFormat()))
        problem =
            "The input texture for spherical map conversion holds whole numbers, give a UNORM, SNORM or "
            "FLOAT one. Aborting.";
    if (!problem.empty())
        _log(problem);
    return problem.empty();
}

bool EnvironmentRenderer::_setupData() {
    // Objects of a graphics system that was replaced since cannot draw any more.
    if (!_sphericalData || _sphericalData->sampler->getSystem() != _getGraphicsSystem()) {
        _sphericalData = std::make_unique<SphericalData>();
        _sphericalData->sampler = ovGraphics::Sampler::create(_getGraphicsSystem());
        _sphericalData->sampler->setName(SPHERICAL_NAME);
        _sphericalData->program = makeSphericalProgram(_getGraphicsSystem());
    }
    const bool loaded = _sphericalData->sampler->load() && _sphericalData->program->load();
    if (!loaded)
        _log("The program of the spherical map conversion cannot be loaded, the graphics system's log says "
             "why. "
             "Aborting.");
    return loaded;
}

void EnvironmentRenderer::_log(ovMemory::StringView message) const {
    logMessage(_system.get(), message, "EnvironmentRenderer");
}

} // namespace ovVeldris
