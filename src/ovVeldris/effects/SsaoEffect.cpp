#include <ovVeldris/effects/SsaoEffect.h>

#include <algorithm>
#include <bit>
#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/shaders/MathsLib.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr unsigned int SCENE_UNIT = 0; ///< positions or depth
constexpr unsigned int NORMAL_UNIT = 1;

/// Of the pixel stage, and of the vertex stage when depth is read.
constexpr unsigned int PIXEL_CONSTANTS = 0;
constexpr unsigned int VERTEX_CONSTANTS = 1;

constexpr unsigned int SAMPLING_SLOT = 0;
constexpr unsigned int PROJECTION_SLOT = 1;
constexpr unsigned int PROJECTION_PARAMETERS_SLOT = 2;

/// A border of zeros: positions outside the screen are then those of nothing.
constexpr EffectSamplerSettings SSAO_SAMPLER = {
    .name = "VELDRIS_SSAO_SAMPLER",
    .filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT,
    .address = ovGraphics::TEXTURE_ADDRESS::BORDER,
    .borderColor = std::array{0.0f, 0.0f, 0.0f, 0.0f},
    .hidden = false,
};

} // namespace

const SettingTable& SsaoEffect::settings() {
    using Class = SsaoEffect;
    using Rows = SettingRows<SsaoEffect>;
    constexpr SettingRange SAMPLES = {.minimum = 1.0f, .maximum = float(MAX_KERNEL_SAMPLE_COUNT)};
    const auto setLinearDepth = [](SsaoEffect& effect, bool isLinear) {
        effect._currentInfo.linearDepth = isLinear;
    };
    const auto getCount = [](const SsaoEffect& effect) {
        return static_cast<int>(effect.getKernelSampleCount());
    };
    const auto setCount = [](SsaoEffect& effect, int count) {
        effect.setKernelSampleCount(static_cast<unsigned int>(std::max(count, 0)));
    };
    static const SettingTable TABLE = {
        Rows::texture("depth-buffer", &Class::getDepthBuffer, &Class::_setDepth, "the depth of the scene"),
        Rows::flag("linear-depth", &Class::getLinearDepth, setLinearDepth, false,
                   "the depth is view z over the far plane")
            .atLoad(),
        Rows::texture("g-buffer-position", &Class::getPositionBuffer, &Class::_setPositions,
                      "view-space positions of the scene, which are read instead of its depth"),
        Rows::texture("g-buffer-normal", &Class::getNormalBuffer, &Class::_setNormals,
                      "view-space normals, read with positions"),
        Rows::camera("camera", &Class::getCamera, &Class::setCamera, "who saw the scene"),
        Rows::number("sampling-radius", &Class::getSamplingRadius, &Class::setSamplingRadius, 0.05f,
                     "how far around a pixel is looked")
            .in(NOT_NEGATIVE, "units of the view"),
        Rows::number("max-occlusion-distance", &Class::getMaxOcclusionDistance,
                     &Class::setMaxOcclusionDistance, 1.0f, "how much nearer a surface may be to darken")
            .in(NOT_NEGATIVE, "units of the view"),
        Rows::number("strength", &Class::getStrength, &Class::setStrength, 0.8f,
                     "power of the open fraction; 0 draws no occlusion")
            .in(UNIT_RANGE),
        Rows::number("depth-bias", &Class::getDepthBias, &Class::setDepthBias, 0.00001f,
                     "how much nearer a surface must be to darken; six decimals count")
            .in(NOT_NEGATIVE, "units of the view")
            .atLoad(),
        Rows::integer("kernel-sample-count", getCount, setCount, int{MAX_KERNEL_SAMPLE_COUNT},
                      "samples a pixel")
            .in(SAMPLES)
            .atLoad(),
        Rows::flag("occlusion-drives-alpha", &Class::getOcclusionDrivesAlpha, &Class::setOcclusionDrivesAlpha,
                   false, "write the open fraction to alpha too, for blending")
            .atLoad(),
    };
    return TABLE;
}

uint64_t SsaoIdGenerator::operator()(const SsaoEffectInfo& info) const {
    return uint64_t{std::bit_cast<uint32_t>(info.depthBias)} << 32 | uint64_t{info.kernelSampleCount} << 24 |
           uint64_t{info.readsPositions} << 16 | uint64_t{info.occlusionDrivesAlpha} << 15 |
           uint64_t{info.linearDepth} << 14;
}

ovMemory::UniquePtr<SsaoEffect> SsaoEffect::create(System* system) {
    return std::make_unique<SsaoEffect>(system);
}

SsaoEffect::SsaoEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::SSAO, system, "ssao", "SsaoEffect", settings()) {}

SsaoEffect::~SsaoEffect() = default;

void SsaoEffect::setEffectFromGBufferInfo(ovGraphics::Texture* positions, ovGraphics::Texture* normals) {
    _currentInfo.depthBuffer = nullptr;
    _setNormals(normals);
    _setPositions(positions);
}

void SsaoEffect::setEffectFromDepthInfo(ovGraphics::Texture* depth, bool linearDepth) {
    _currentInfo.linearDepth = linearDepth;
    // Stored only: a shader that was loaded with positions keeps those that it has until the next load.
    _currentInfo.gBufferPosition = nullptr;
    _currentInfo.gBufferNormal = nullptr;
    _currentInfo.readsPositions = false;
    _currentInfo.readsNormals = false;
    _setDepth(depth);
}

void SsaoEffect::_setPositions(ovGraphics::Texture* positions) {
    _currentInfo.gBufferPosition = positions;
    _currentInfo.readsPositions = positions != nullptr;
    if (_loadedInfo.readsPositions)
        _bindTextureIfLoaded(positions, SCENE_UNIT);
}

void SsaoEffect::_setNormals(ovGraphics::Texture* normals) {
    _currentInfo.gBufferNormal = normals;
    _currentInfo.readsNormals = normals != nullptr;
    if (_loadedInfo.readsPositions && _loadedInfo.readsNormals)
        _bindTextureIfLoaded(normals, NORMAL_UNIT);
}

void SsaoEffect::_setDepth(ovGraphics::Texture* depth) {
    _currentInfo.depthBuffer = depth;
    if (!_loadedInfo.readsPositions)
        _bindTextureIfLoaded(depth, SCENE_UNIT);
}

void SsaoEffect::setCamera(ovGraphics::Camera* camera) {
    _currentInfo.camera = camera;
    if (ovGraphics::Shader* shader = _getLoadedShader())
        _writeCamera(*shader);
}

void SsaoEffect::setSamplingRadius(float radius) {
    _currentInfo.samplingRadius = radius;
    _writeSamplingVarsIfLoaded();
}

void SsaoEffect::setMaxOcclusionDistance(float distance) {
    _currentInfo.maxOcclusionDistance = distance;
    _writeSamplingVarsIfLoaded();
}

void SsaoEffect::setStrength(float strength) {
    _currentInfo.strength = std::clamp(strength, 0.0f, 1.0f);
    _writeSamplingVarsIfLoaded();
}

void SsaoEffect::setDepthBias(float bias) {
    _currentInfo.depthBias = bias;
}

void SsaoEffect::setKernelSampleCount(unsigned int count) {
    _currentInfo.kernelSampleCount = std::clamp(count, 1u, MAX_KERNEL_SAMPLE_COUNT);
}

void SsaoEffect::setOcclusionDrivesAlpha(bool drives) {
    _currentInfo.occlusionDrivesAlpha = drives;
}

ovGraphics::Texture* SsaoEffect::getPositionBuffer() const {
    return _currentInfo.gBufferPosition.get();
}

ovGraphics::Texture* SsaoEffect::getNormalBuffer() const {
    return _currentInfo.gBufferNormal.get();
}

ovGraphics::Texture* SsaoEffect::getDepthBuffer() const {
    return _currentInfo.depthBuffer.get();
}

ovGraphics::Camera* SsaoEffect::getCamera() const {
    return _currentInfo.camera.get();
}

void SsaoEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String vertexText =
        assembleShaderText({{"SsaoEffect.vertex.ovsl", embedded::SsaoEffect_vertex}});
    static const ovMemory::String pixelText = assembleShaderText({
        {"ovComputeLinearDepth", MathsLib::ovComputeLinearDepth()},
        {"SsaoEffect.pixel.ovsl", embedded::SsaoEffect_pixel},
    });
    sources.setVertexMemory(vertexText);
    sources.setPixelMemory(pixelText);
    sources.addDefineMacroPixel("DEPTH_BIAS", toSixDecimals(_loadedInfo.depthBias));
    sources.addDefineMacroPixel("MAX_KERNEL_SAMPLES", std::to_string(_loadedInfo.kernelSampleCount));
    if (_loadedInfo.readsPositions) {
        sources.addDefineMacroPixel("GBUFFER_POSITION", "");
        if (_loadedInfo.readsNormals)
            sources.addDefineMacroPixel("GBUFFER_NORMAL", "");
    } else {
        sources.addDefineMacroVertex("DEPTH_BUFFER", "");
        sources.addDefineMacroPixel("DEPTH_BUFFER", "");
        if (_loadedInfo.linearDepth)
            sources.addDefineMacroPixel("LINEAR_DEPTH", "");
    }
    if (_loadedInfo.occlusionDrivesAlpha)
        sources.addDefineMacroPixel("OCCLUSION_DRIVES_ALPHA", "");
}

void SsaoEffect::_bindResources(ovGraphics::Shader& shader) {
    _writeSamplingVars(shader);
    _writeCamera(shader);
    if (_loadedInfo.readsPositions) {
        shader.setTexture(getPositionBuffer(), SCENE_UNIT, 0);
        if (_loadedInfo.readsNormals)
            shader.setTexture(getNormalBuffer(), NORMAL_UNIT, 0);
    } else {
        shader.setTexture(getDepthBuffer(), SCENE_UNIT, 0);
        constantSlot(shader, PROJECTION_PARAMETERS_SLOT, PIXEL_CONSTANTS).setAsProjectionParameters();
    }
    shader.setSampler(_prepareSampler(SSAO_SAMPLER), 0, 0);
}

void SsaoEffect::_writeSamplingVarsIfLoaded() const {
    if (ovGraphics::Shader* shader = _getLoadedShader())
        _writeSamplingVars(*shader);
}

void SsaoEffect::_writeSamplingVars(ovGraphics::Shader& shader) const {
    constantSlot(shader, SAMPLING_SLOT, PIXEL_CONSTANTS)
        .setFromVector(
            {_currentInfo.samplingRadius, _currentInfo.maxOcclusionDistance, _currentInfo.strength});
}

void SsaoEffect::_writeCamera(ovGraphics::Shader& shader) const {
    constantSlot(shader, PROJECTION_SLOT, PIXEL_CONSTANTS).setAsProjectionMatrix(getCamera());
    if (!_loadedInfo.readsPositions) // positions need no directions
        constantSlot(shader, 0, VERTEX_CONSTANTS).setAsCamCornersView(getCamera());
}

void SsaoEffectUtils::prepareBlendStateForAoBlending(ovGraphics::BlendState* blendState) {
    using ovGraphics::BLEND;
    using ovGraphics::BLEND_OPERATION;
    constexpr unsigned int TARGET = 0;
    blendState->setAlphaToCoverageEnabled(false);
    blendState->setIndependentBlendEnabled(false);
    blendState->setBlendEnabled(true, TARGET);
    blendState->setOperation(BLEND_OPERATION::ADD, TARGET);
    blendState->setAlphaOperation(BLEND_OPERATION::MAX, TARGET);
    blendState->setDestinationFactor(BLEND::SRC_ALPHA, TARGET);
    blendState->setAlphaDestinationFactor(BLEND::ONE, TARGET);
    blendState->setSourceFactor(BLEND::ZERO, TARGET);
    blendState->setAlphaSourceFactor(BLEND::SRC_ALPHA, TARGET);
    blendState->setWriteMask(ovGraphics::COLOR_WRITE_ALL, TARGET);
}

} // namespace ovVeldris
