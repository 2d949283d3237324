#include <ovVeldris/effects/FxaaEffect.h>

#include <algorithm>
#include <cmath>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr unsigned int FXAA_SOURCE_UNIT = 0;
constexpr unsigned int NUMBERS_SLOT = 0;
constexpr unsigned int SIZE_SLOT = 1;

constexpr EffectSamplerSettings FXAA_SAMPLER = {
    .name = "VELDRIS_FXAA_SAMPLER",
    .filter = ovGraphics::FILTER::MIN_MAG_LINEAR_MIP_POINT,
    .address = ovGraphics::TEXTURE_ADDRESS::CLAMP,
    .hidden = false,
};

/// A number from 0 to 1 as the shader has it: of the range in which it is useful.
struct ShaderUnits {
    float scale;
    float offset;

    float store(float number) const { return number * scale + offset; }
    float read(float stored) const { return (stored - offset) / scale; }
};

constexpr ShaderUnits CONTRAST = {0.35f, 0.05f};
constexpr ShaderUnits LUMINANCE = {0.06f, 0.03f};

float clampToUnit(float number) {
    // fmax() and fmin() drop NaN, which std::clamp() would hand on.
    return std::fmin(std::fmax(number, 0.0f), 1.0f);
}

/// The preset that is drawn.
FXAA_PRESET knownPreset(FXAA_PRESET preset) {
    return std::min(preset, FXAA_PRESET::QUALITY_39);
}

} // namespace

const SettingTable& FxaaEffect::settings() {
    using Class = FxaaEffect;
    using Rows = SettingRows<FxaaEffect>;
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture,
                      "the sRGB-encoded picture to smooth"),
        Rows::enumeration(
            "preset", ovMemory::enumTableOf<FXAA_PRESET>(),
            [](const Class& effect) { return knownPreset(effect.getPreset()); }, &Class::setPreset,
            FxaaEffectInfo().preset, "how far and how finely edges are searched: 10 fastest, 39 best")
            .atLoad(),
        Rows::number("min-contrast", &Class::getMinContrast, &Class::setMinContrast,
                     CONTRAST.read(FxaaEffectInfo().minContrast), "contrast that makes an edge")
            .in(UNIT_RANGE),
        Rows::number("min-luminance", &Class::getMinLuminance, &Class::setMinLuminance,
                     LUMINANCE.read(FxaaEffectInfo().minLuminance), "contrast that an edge in the dark needs")
            .in(UNIT_RANGE),
        Rows::number("smoothing-strength", &Class::getSmoothingStrength, &Class::setSmoothingStrength,
                     FxaaEffectInfo().smoothingStrength, "how much single pixels and thin lines are smoothed")
            .in(UNIT_RANGE),
        Rows::flag("luminance-as-green-channel-only", &Class::getLuminanceAsGreenChannelOnly,
                   &Class::setLuminanceAsGreenChannelOnly, false, "take green for the luminance")
            .atLoad(),
    };
    return TABLE;
}

ovMemory::UniquePtr<FxaaEffect> FxaaEffect::create(System* system) {
    return std::make_unique<FxaaEffect>(system);
}

FxaaEffect::FxaaEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::FXAA, system, "fxaa", "FxaaEffect", settings()) {}

FxaaEffect::~FxaaEffect() = default;

void FxaaEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    _bindTextureIfLoaded(texture, FXAA_SOURCE_UNIT);
    if (ovGraphics::Shader* shader = _getLoadedShader())
        constantSlot(*shader, SIZE_SLOT).setAsTextureSize(texture);
}

void FxaaEffect::setMinContrast(float contrast) {
    _currentInfo.minContrast = CONTRAST.store(clampToUnit(contrast));
    _writeNumbersIfLoaded();
}

void FxaaEffect::setMinLuminance(float luminance) {
    _currentInfo.minLuminance = LUMINANCE.store(clampToUnit(luminance));
    _writeNumbersIfLoaded();
}

void FxaaEffect::setSmoothingStrength(float strength) {
    _currentInfo.smoothingStrength = clampToUnit(strength);
    _writeNumbersIfLoaded();
}

void FxaaEffect::setPreset(FXAA_PRESET preset) {
    _currentInfo.preset = preset;
}

void FxaaEffect::setLuminanceAsGreenChannelOnly(bool greenOnly) {
    _currentInfo.luminanceAsGreenChannelOnly = greenOnly;
}

ovGraphics::Texture* FxaaEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

float FxaaEffect::getMinContrast() const {
    return CONTRAST.read(_currentInfo.minContrast);
}

float FxaaEffect::getMinLuminance() const {
    return LUMINANCE.read(_currentInfo.minLuminance);
}

void FxaaEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleShaderText({{"FxaaEffect.pixel.ovsl", embedded::FxaaEffect_pixel}});
    sources.setPixelMemory(pixelText);
    sources.addDefineMacroPixel("QUALITY_PRESET", ovMemory::enumToText(knownPreset(_currentInfo.preset)));
    if (_currentInfo.luminanceAsGreenChannelOnly)
        sources.addDefineMacroPixel("LUMA_FROM_G_CHANNEL_ONLY", "");
}

void FxaaEffect::_bindResources(ovGraphics::Shader& shader) {
    _writeNumbers(shader);
    constantSlot(shader, SIZE_SLOT).setAsTextureSize(getSourceTexture());
    shader.setTexture(getSourceTexture(), FXAA_SOURCE_UNIT, 0);
    shader.setSampler(_prepareSampler(FXAA_SAMPLER), FXAA_SOURCE_UNIT, 0);
}

void FxaaEffect::_writeNumbers(ovGraphics::Shader& shader) const {
    constantSlot(shader, NUMBERS_SLOT)
        .setFromVector({_currentInfo.minContrast, _currentInfo.minLuminance, _currentInfo.smoothingStrength});
}

void FxaaEffect::_writeNumbersIfLoaded() const {
    if (ovGraphics::Shader* shader = _getLoadedShader())
        _writeNumbers(*shader);
}

} // namespace ovVeldris
