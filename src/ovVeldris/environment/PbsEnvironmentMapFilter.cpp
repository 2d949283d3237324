#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>

#include <algorithm>
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
#include <ovVeldris/environment/detail/PbsFilterLobe.h>
#include <ovVeldris/environment/detail/ToolTarget.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

struct PbsEnvironmentMapFilter::FilterData {
    ovMemory::UniquePtr<ovGraphics::Sampler> sampler;
    ovMemory::UniquePtr<ovGraphics::Program> cubeProgram;
    ovMemory::UniquePtr<ovGraphics::Program> sphericalProgram;
};

namespace {

using ovGraphics::FORMAT;
using ovGraphics::TEXTURE_TYPE;
using ovGraphics::TextureUtils;

constexpr ovMemory::StringView CUBE_FILTER_NAME = "VELDRIS_CUBE_FILTER_PBS";
constexpr ovMemory::StringView SPHERICAL_FILTER_NAME = "VELDRIS_SPHERICAL_FILTER_PBS";

/// Mips of 2 x 2 and 1 x 1 texels would mix up all directions.
constexpr unsigned int MIPS_LEFT_OUT = 2;

/// The zero up vectors leave it to the camera what is up.
const CubeFaceViews& filterViews() {
    static const CubeFaceViews VIEWS = {{
        {"VELDRIS_POSX_CAM", {1.0f, 0.0f, 0.0f}, {}},
        {"VELDRIS_NEGX_CAM", {-1.0f, 0.0f, 0.0f}, {}},
        {"VELDRIS_POSY_CAM", {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, -1.0f}},
        {"VELDRIS_NEGY_CAM", {0.0f, -1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}},
        {"VELDRIS_POSZ_CAM", {0.0f, 0.0f, 1.0f}, {}},
        {"VELDRIS_NEGZ_CAM", {0.0f, 0.0f, -1.0f}, {}},
    }};
    return VIEWS;
}

bool isCube(const ovGraphics::Texture& texture) {
    return texture.getTexType() == TEXTURE_TYPE::CUBE;
}

ovMemory::String inBrackets(const ovGraphics::Texture& texture) {
    return " [" + ovMemory::String(texture.getName()) + "]";
}

/// Mips of the output; 0 for resolutions that are too small for one.
unsigned int countMips(unsigned int resolution) {
    const unsigned int needed = TextureUtils::getNeededMipsForSize(resolution, resolution);
    return needed > MIPS_LEFT_OUT ? needed - MIPS_LEFT_OUT : 0;
}

ToolTarget targetFor(const ovGraphics::Texture& input, unsigned int resolution) {
    const FORMAT format = TextureUtils::getFormatWithAlphaEquivalent(
        TextureUtils::getFormatUncompressedEquivalent(input.getFormat()));
    const bool hasSrgbSibling = TextureUtils::getFormatSrgbEquivalent(format) != format;
    return {.type = TEXTURE_TYPE::CUBE,
            .format = format,
            .gammaCorrected = input.getGammaCorrected() && hasSrgbSibling,
            .width = resolution,
            .height = resolution,
            .mipCount = countMips(resolution)};
}

/// The program of both stages' texts with the define, when one is given.
bool prepareProgram(ovMemory::UniquePtr<ovGraphics::Program>& program, ovGraphics::System* graphicsSystem,
                    ovMemory::StringView name, ovMemory::StringView define) {
    if (!program) {
        static const ovMemory::String vertexText = assembleShaderText(
            {{"PbsEnvironmentMapFilter.vertex.ovsl", embedded::PbsEnvironmentMapFilter_vertex}});
        static const ovMemory::String pixelText = assembleShaderText(
            {{"directionToMapUv.ovsl", embedded::directionToMapUv},
             {"PbsEnvironmentMapFilter.pixel.ovsl", embedded::PbsEnvironmentMapFilter_pixel}});
        ovGraphics::ProgramSourcesHolder sources;
        sources.setVertexMemory(vertexText);
        sources.setPixelMemory(pixelText);
        if (!define.empty())
            sources.addDefineMacroPixel(define, "");
        program = ovGraphics::Program::create(graphicsSystem);
        program->setName(name);
        program->setActivateCrossCompilerDefines(true);
        program->setSources(sources);
    }
    return program->load();
}

bool prepareSampler(ovMemory::UniquePtr<ovGraphics::Sampler>& sampler, ovGraphics::System* graphicsSystem) {
    if (!sampler) {
        sampler = ovGraphics::Sampler::create(graphicsSystem);
        sampler->setName("VELDRIS_ENV_SAMPLER");
        sampler->setFilter(ovGraphics::FILTER::MIN_MAG_MIP_LINEAR);
        sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::WRAP);
        sampler->setAddressV(ovGraphics::TEXTURE_ADDRESS::WRAP);
        sampler->setAddressW(ovGraphics::TEXTURE_ADDRESS::WRAP);
    }
    return sampler->load();
}

/// Buffer 0: the camera's corners, then (roughness, number of samples, sum of weights, 0); buffer 1: samples.
void setConstants(ovGraphics::Shader& shader, float roughness, const PbsFilterLobe& lobe) {
    ovGraphics::ConstantBuffer* constants = shader.addConstantBuffer(0, 0);
    constants->addPassMemorySlot()->setAsCamCornersWorld();
    constants->addPassMemorySlot()->setFromVector(
        {roughness, static_cast<float>(lobe.samples.size()), lobe.weightSum});
    ovGraphics::ConstantBuffer* samples = shader.addConstantBuffer(1, 0);
    for (const ovMaths::Vector& sample : lobe.samples)
        // In constants and not in a texture: every pixel reads all of them in the same order, which is what
        // constants are fast at.
        samples->addPassMemorySlot()->setFromVector(sample);
}

} // namespace

PbsEnvironmentMapFilter::PbsEnvironmentMapFilter(System* system)
    : _system(system) {}

PbsEnvironmentMapFilter::~PbsEnvironmentMapFilter() = default;

void PbsEnvironmentMapFilter::requestEnvironmentMapFiltering(ovGraphics::Texture* input,
                                                             ovGraphics::Texture* output,
                                                             unsigned int resolution) {
    if (!_checkTextures(input, output) || !_setupData())
        return;
    if (countMips(resolution) == 0 || !loadToolTarget(*output, targetFor(*input, resolution))) {
        _log(
            "Filter output texture cannot be loaded using given parameters. Problem is within the engine and "
            "needs to be fixed there, please give a notice about this." +
            inBrackets(*input));
        return;
    }
    const bool deferred = input->getGpuUploadCanBeDeferred();
    input->setGpuUploadCanBeDeferred(false);
    _draw(*input, *output);
    input->setGpuUploadCanBeDeferred(deferred);
}

System* PbsEnvironmentMapFilter::getSystem() const {
    return _system.get();
}

ovGraphics::System* PbsEnvironmentMapFilter::_getGraphicsSystem() const {
    return graphicsSystemOf(_system.get());
}

bool PbsEnvironmentMapFilter::_checkTextures(const ovGraphics::Texture* input,
                                             const ovGraphics::Texture* output) const {
    ovMemory::String problem;
    if (!input || !output)
        problem = "Missing input or output texture to filter an environment map. Aborting.";
    else if (input->isUnloaded())
        problem =
            "Environment map provided is unloaded, cannot proceed with the filtering." + inBrackets(*input);
    else if (input->getSystem() != output->getSystem())
        problem = "Requested environment map filtering with input and output textures coming from different "
                  "systems, which is not supported. Aborting.";
    else if (input->getSystem() != _getGraphicsSystem())
        problem = "Environment map provided comes from a different graphics system than the filter's one. "
                  "Aborting." +
                  inBrackets(*input);
    else if (input == output)
        problem = "Environment map provided is the output texture too, filter into another one. Aborting." +
                  inBrackets(*input);
    else if (holdsWholeNumbers(input->getFormat()))
        problem = "Environment map provided holds whole numbers in the format " +
                  ovMemory::String(TextureUtils::getFormatName(input->getFormat())) +
                  ", give a UNORM, SNORM or FLOAT one. Aborting." + inBrackets(*input);
    if (!problem.empty())
        _log(problem);
    return problem.empty();
}

bool PbsEnvironmentMapFilter::_setupData() {
    ovGraphics::System* const graphicsSystem = _getGraphicsSystem();
    // Objects of a graphics system that was replaced since cannot draw any more.
    if (!_filterData || _filterData->sampler->getSystem() != graphicsSystem)
        _filterData = std::make_unique<FilterData>();
    const bool loaded =
        prepareSampler(_filterData->sampler, graphicsSystem) &&
        prepareProgram(_filterData->cubeProgram, graphicsSystem, CUBE_FILTER_NAME, "CUBE_ENV") &&
        prepareProgram(_filterData->sphericalProgram, graphicsSystem, SPHERICAL_FILTER_NAME, {});
    if (!loaded)
        _log("The programs of the environment map filter cannot be loaded, the graphics system's log says "
             "why. "
             "Aborting.");
    return loaded;
}

void PbsEnvironmentMapFilter::_draw(ovGraphics::Texture& input, ovGraphics::Texture& output) const {
    ovGraphics::System* const graphicsSystem = _getGraphicsSystem();
    const ovMemory::StringView name = isCube(input) ? CUBE_FILTER_NAME : SPHERICAL_FILTER_NAME;
    ovGraphics::Program* const program =
        isCube(input) ? _filterData->cubeProgram.get() : _filterData->sphericalProgram.get();
    const CubeFaceCameras cameras = makeCubeFaceCameras(graphicsSystem, filterViews());
    const auto compositor = ovGraphics::Compositor::create(graphicsSystem);
    compositor->setName("VELDRIS_PBS_FILTER_ENV");

    // Half a flat map's height is the size of a cube with texels as large; cubes are read as finely.
    const double resolution = 0.5 * input.getHeight();
    const unsigned int mipCount = output.getMipCount();
    const float lastMip = static_cast<float>(std::max(mipCount, 2u) - 1);
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Shader>> shaders;
    for (unsigned int mip = 0; mip < mipCount; ++mip) {
        const float roughness = std::min(1.0f, static_cast<float>(mip) / lastMip);
        // One shader a mip, because all of them are drawn in one frame and each keeps its own constants. Six
        // faces share it, as the lobe does not depend on the direction.
        shaders.push_back(ovGraphics::Shader::create(graphicsSystem));
        ovGraphics::Shader& shader = *shaders.back();
        shader.setName(ovMemory::String(name) + "_" + std::to_string(mip));
        shader.setProgram(program);
        setConstants(shader, roughness, computePbsFilterLobe(roughness, resolution));
        shader.setTexture(&input, 0, 0);
        shader.setSampler(_filterData->sampler.get(), 0, 0);
        shader.load();
        appendCubeFaces(*compositor->appendNode(), output, mip, cameras, shader);
    }
    drawOneShotFrame(*compositor, output);
}

void PbsEnvironmentMapFilter::_log(ovMemory::StringView message) const {
    logMessage(_system.get(), message, "PbsEnvironmentMapFilter");
}

} // namespace ovVeldris
