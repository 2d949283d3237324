#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr unsigned int SOURCE_UNIT = 0;

constexpr EffectSamplerSettings SAMPLER = {
    .name = "VELDRIS_TONE_MAPPING_SAMPLER",
    .filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT,
    .address = ovGraphics::TEXTURE_ADDRESS::CLAMP,
};

} // namespace

ovMemory::UniquePtr<ToneMappingEffect> ToneMappingEffect::create(System* system) {
    return std::make_unique<ToneMappingEffect>(system);
}

ToneMappingEffect::ToneMappingEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::TONE_MAPPING, system, "tone mapping", "ToneMappingEffect") {}

ToneMappingEffect::~ToneMappingEffect() = default;

void ToneMappingEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    _bindTextureIfLoaded(texture, SOURCE_UNIT);
}

void ToneMappingEffect::setUseLuminance(bool use) {
    _currentInfo.useLuminance = use;
}

void ToneMappingEffect::setAsReinhard(const ovMaths::Vector& maxWhite) {
    _reinhardMaxWhite = maxWhite;
    _selectOperator(&ToneMappingEffectInfo::reinhardUsed);
}

void ToneMappingEffect::setAsHables(const ToneMappingHablesCurveDescriptor& curve) {
    _hablesDescriptor = curve;
    _selectOperator(&ToneMappingEffectInfo::hablesUsed);
}

void ToneMappingEffect::setAsAces(const ovMaths::Matrix& lookTransform) {
    _acesLookTransform = lookTransform;
    _selectOperator(&ToneMappingEffectInfo::acesUsed);
}

ovGraphics::Texture* ToneMappingEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

void ToneMappingEffect::_selectOperator(bool ToneMappingEffectInfo::*used) {
    _currentInfo.reinhardUsed = false;
    _currentInfo.hablesUsed = false;
    _currentInfo.acesUsed = false;
    _currentInfo.*used = true;
    ovGraphics::Shader* shader = _getLoadedShader();
    if (shader && _loadedInfo.*used)
        _writeConstants(*shader);
}

void ToneMappingEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleShaderText({{"ToneMappingEffect.pixel.ovsl", embedded::ToneMappingEffect_pixel}});
    sources.setPixelMemory(pixelText);
    if (_currentInfo.reinhardUsed) {
        sources.addDefineMacroPixel("REINHARD", "");
    } else if (_currentInfo.hablesUsed) {
        sources.addDefineMacroPixel("HABLES", "");
    } else if (_currentInfo.acesUsed) {
        sources.addDefineMacroPixel("ACES", "");
        sources.addDefineMacroPixel("ODT_SRGB", "");
    }
    if (_currentInfo.useLuminance)
        sources.addDefineMacroPixel("LUMINANCE", "");
}

void ToneMappingEffect::_bindResources(ovGraphics::Shader& shader) {
    _writeConstants(shader);
    shader.setTexture(getSourceTexture(), SOURCE_UNIT, 0);
    shader.setSampler(_prepareSampler(SAMPLER), SOURCE_UNIT, 0);
}

void ToneMappingEffect::_writeConstants(ovGraphics::Shader& shader) const {
    if (_currentInfo.reinhardUsed) {
        _constantSlot(shader, 0).setFromVector(_reinhardMaxWhite);
    } else if (_currentInfo.hablesUsed) {
        const ToneMappingHablesCurve curve = computeToneMappingHablesCurve(_hablesDescriptor);
        for (unsigned int i = 0; i < curve.size(); ++i)
            _constantSlot(shader, i).setFromVector(curve[i]);
    } else if (_currentInfo.acesUsed) {
        _constantSlot(shader, 0).setFromMatrix(_acesLookTransform);
    }
}

} // namespace ovVeldris
