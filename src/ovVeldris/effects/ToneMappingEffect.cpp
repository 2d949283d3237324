#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr unsigned int TONE_MAPPING_SOURCE_UNIT = 0;

constexpr EffectSamplerSettings TONE_MAPPING_SAMPLER = {
    .name = "VELDRIS_TONE_MAPPING_SAMPLER",
    .filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT,
    .address = ovGraphics::TEXTURE_ADDRESS::CLAMP,
};

using OPERATOR = TONE_MAPPING_OPERATOR;
using Rows = SettingRows<ToneMappingEffect>;

OPERATOR operatorOf(const ToneMappingEffectInfo& info) {
    if (info.acesUsed)
        return OPERATOR::ACES;
    return info.hablesUsed ? OPERATOR::HABLES : OPERATOR::REINHARD;
}

/// The row of a number of the filmic curve.
Setting curveNumber(ovMemory::StringView name, float ToneMappingHablesCurveDescriptor::*field,
                    float byDefault, ovMemory::StringView help) {
    const auto get = [field](const ToneMappingEffect& effect) { return effect.getHablesDescriptor().*field; };
    const auto set = [field](ToneMappingEffect& effect, float value) {
        // The effect takes the curve as a whole, so that a row changes one number of a copy.
        ToneMappingHablesCurveDescriptor curve = effect.getHablesDescriptor();
        curve.*field = value;
        effect.setHablesDescriptor(curve);
    };
    return Rows::number(name, get, set, byDefault, help).with("operator", "hables");
}

} // namespace

const SettingTable& ToneMappingEffect::settings() {
    using Class = ToneMappingEffect;
    using Curve = ToneMappingHablesCurveDescriptor;
    constexpr SettingRange LENGTH = {.minimum = 0.0f, .maximum = 1.0f, .includesMinimum = false};
    constexpr SettingRange STRENGTH = {.minimum = 0.0f, .maximum = 1.0f, .includesMaximum = false};
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture,
                      "the scene-linear picture to map"),
        Rows::enumeration("operator", ovMemory::enumTableOf<OPERATOR>(), &Class::getOperator,
                          &Class::setOperator, OPERATOR::REINHARD, "the curve")
            .atLoad(),
        Rows::flag("use-luminance", &Class::getUseLuminance, &Class::setUseLuminance, true,
                   "map the luminance and keep the hue")
            .atLoad(),
        Rows::vector("max-white", 3, &Class::getReinhardMaxWhite, &Class::setReinhardMaxWhite,
                     {2.0f, 2.0f, 2.0f}, "the smallest light that becomes white")
            .in(POSITIVE)
            .with("operator", "reinhard"),
        Rows::matrix("look-transform", 3, &Class::getAcesLookTransform, &Class::setAcesLookTransform,
                     ovMaths::Matrix(), "applied in ACEScg before the curve")
            .with("operator", "aces"),
        curveNumber("toe-length", &Curve::toeLength, 0.05f, "how far the toe reaches").in(LENGTH),
        curveNumber("toe-strength", &Curve::toeStrength, 0.05f, "how much the toe darkens").in(STRENGTH),
        curveNumber("shoulder-length", &Curve::shoulderLength, 0.05f, "how far the shoulder reaches")
            .in(LENGTH),
        curveNumber("shoulder-strength", &Curve::shoulderStrength, 0.1f, "extra white range")
            .in(NOT_NEGATIVE, "stops"),
        curveNumber("shoulder-angle", &Curve::shoulderAngle, 1.0f, "overshoot of the shoulder")
            .in(UNIT_RANGE),
        curveNumber("gamma", &Curve::gamma, 1.0f, "power applied to the whole curve").in(POSITIVE),
    };
    return TABLE;
}

ovMemory::UniquePtr<ToneMappingEffect> ToneMappingEffect::create(System* system) {
    return std::make_unique<ToneMappingEffect>(system);
}

ToneMappingEffect::ToneMappingEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::TONE_MAPPING, system, "tone mapping", "ToneMappingEffect", settings()) {}

ToneMappingEffect::~ToneMappingEffect() = default;

void ToneMappingEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    _bindTextureIfLoaded(texture, TONE_MAPPING_SOURCE_UNIT);
}

void ToneMappingEffect::setUseLuminance(bool use) {
    _currentInfo.useLuminance = use;
}

void ToneMappingEffect::setAsReinhard(const ovMaths::Vector& maxWhite) {
    setOperator(OPERATOR::REINHARD);
    setReinhardMaxWhite(maxWhite);
}

void ToneMappingEffect::setAsHables(const ToneMappingHablesCurveDescriptor& curve) {
    setOperator(OPERATOR::HABLES);
    setHablesDescriptor(curve);
}

void ToneMappingEffect::setAsAces(const ovMaths::Matrix& lookTransform) {
    setOperator(OPERATOR::ACES);
    setAcesLookTransform(lookTransform);
}

void ToneMappingEffect::setOperator(TONE_MAPPING_OPERATOR chosen) {
    _currentInfo.reinhardUsed = chosen == OPERATOR::REINHARD;
    _currentInfo.hablesUsed = chosen == OPERATOR::HABLES;
    _currentInfo.acesUsed = chosen == OPERATOR::ACES;
}

void ToneMappingEffect::setReinhardMaxWhite(const ovMaths::Vector& maxWhite) {
    _reinhardMaxWhite = maxWhite;
    _writeConstantsIfLoaded(OPERATOR::REINHARD);
}

void ToneMappingEffect::setHablesDescriptor(const ToneMappingHablesCurveDescriptor& curve) {
    _hablesDescriptor = curve;
    _writeConstantsIfLoaded(OPERATOR::HABLES);
}

void ToneMappingEffect::setAcesLookTransform(const ovMaths::Matrix& lookTransform) {
    _acesLookTransform = lookTransform;
    _writeConstantsIfLoaded(OPERATOR::ACES);
}

TONE_MAPPING_OPERATOR ToneMappingEffect::getOperator() const {
    return operatorOf(_currentInfo);
}

ovGraphics::Texture* ToneMappingEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

void ToneMappingEffect::_writeConstantsIfLoaded(TONE_MAPPING_OPERATOR changed) const {
    ovGraphics::Shader* shader = _getLoadedShader();
    // The curves use the same slots for different numbers: those of a curve that is not loaded must stay out.
    if (shader && operatorOf(_loadedInfo) == changed)
        _writeConstants(*shader, changed);
}

void ToneMappingEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleShaderText({{"ToneMappingEffect.pixel.ovsl", embedded::ToneMappingEffect_pixel}});
    sources.setPixelMemory(pixelText);
    // One define for each curve: a pixel does not pay for the curves that are not in use.
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
    _writeConstants(shader, operatorOf(_loadedInfo));
    shader.setTexture(getSourceTexture(), TONE_MAPPING_SOURCE_UNIT, 0);
    shader.setSampler(_prepareSampler(TONE_MAPPING_SAMPLER), TONE_MAPPING_SOURCE_UNIT, 0);
}

void ToneMappingEffect::_writeConstants(ovGraphics::Shader& shader, TONE_MAPPING_OPERATOR used) const {
    if (used == OPERATOR::REINHARD) {
        constantSlot(shader, 0).setFromVector(_reinhardMaxWhite);
    } else if (used == OPERATOR::HABLES) {
        const ToneMappingHablesCurve curve = computeToneMappingHablesCurve(_hablesDescriptor);
        for (unsigned int i = 0; i < curve.size(); ++i)
            constantSlot(shader, i).setFromVector(curve[i]);
    } else {
        constantSlot(shader, 0).setFromMatrix(_acesLookTransform);
    }
}

} // namespace ovVeldris
