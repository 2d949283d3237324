#include <ovVeldris/effects/FilmGrainEffect.h>

#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr unsigned int GRAIN_SOURCE_UNIT = 0;
constexpr unsigned int TIME_SLOT = 0;
constexpr unsigned int STRENGTH_SLOT = 1;
constexpr float TIME_MODULO = 500.0f; // seconds until the grain repeats

constexpr EffectSamplerSettings GRAIN_SAMPLER = {
    .name = "VELDRIS_FILM_GRAIN_SAMPLER",
    .filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT,
    .borderColor = std::array{0.0f, 0.0f, 0.0f, 0.0f},
    .hidden = false,
};

} // namespace

const SettingTable& FilmGrainEffect::settings() {
    using Class = FilmGrainEffect;
    using Rows = SettingRows<FilmGrainEffect>;
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture,
                      "the picture that gets the grain"),
        Rows::number("strength", &Class::getStrength, &Class::setStrength, FilmGrainEffectInfo().strength,
                     "share of a colour that the brightest grain adds to it")
            .in(NOT_NEGATIVE),
        Rows::flag("rgb-noise", &Class::getRgbNoise, &Class::setRgbNoise, false,
                   "noise of its own for each colour")
            .atLoad(),
        Rows::flag("blend-grain-in-target", &Class::getBlendGrainInTarget, &Class::setBlendGrainInTarget,
                   false, "draw the grain alone and blend it with the target")
            .atLoad(),
    };
    return TABLE;
}

ovMemory::UniquePtr<FilmGrainEffect> FilmGrainEffect::create(System* system) {
    return std::make_unique<FilmGrainEffect>(system);
}

FilmGrainEffect::FilmGrainEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::FILM_GRAIN, system, "film grain", "FilmGrainEffect", settings()) {}

FilmGrainEffect::~FilmGrainEffect() = default;

void FilmGrainEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    // As it was loaded: the shader of the grain alone has no unit for a texture.
    if (!_loadedInfo.blendGrainInTarget)
        _bindTextureIfLoaded(texture, GRAIN_SOURCE_UNIT);
}

void FilmGrainEffect::setStrength(float strength) {
    _currentInfo.strength = strength;
    if (ovGraphics::Shader* shader = _getLoadedShader())
        _writeStrength(*shader);
}

void FilmGrainEffect::setRgbNoise(bool rgb) {
    _currentInfo.rgbNoise = rgb;
}

void FilmGrainEffect::setBlendGrainInTarget(bool blend) {
    _currentInfo.blendGrainInTarget = blend;
}

ovGraphics::Texture* FilmGrainEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

void FilmGrainEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleShaderText({{"FilmGrainEffect.pixel.ovsl", embedded::FilmGrainEffect_pixel}});
    sources.setPixelMemory(pixelText);
    if (_currentInfo.blendGrainInTarget)
        sources.addDefineMacroPixel("BLEND_GRAIN", "");
    if (_currentInfo.rgbNoise)
        sources.addDefineMacroPixel("RGB_NOISE", "");
}

void FilmGrainEffect::_bindResources(ovGraphics::Shader& shader) {
    constantSlot(shader, TIME_SLOT).setAsTime(TIME_MODULO);
    _writeStrength(shader);
    if (_loadedInfo.blendGrainInTarget)
        return;
    shader.setTexture(getSourceTexture(), GRAIN_SOURCE_UNIT, 0);
    shader.setSampler(_prepareSampler(GRAIN_SAMPLER), GRAIN_SOURCE_UNIT, 0);
}

void FilmGrainEffect::_writeStrength(ovGraphics::Shader& shader) const {
    constantSlot(shader, STRENGTH_SLOT).setFromVector({_currentInfo.strength, 0.0f, 0.0f, 0.0f});
}

void FilmGrainEffectUtils::prepareBlendStateForGrainBlending(ovGraphics::BlendState* blendState) {
    using ovGraphics::BLEND;
    using ovGraphics::BLEND_OPERATION;
    blendState->setAlphaToCoverageEnabled(false);
    blendState->setIndependentBlendEnabled(false);
    blendState->setBlendEnabled(true, 0);
    blendState->setOperation(BLEND_OPERATION::ADD, 0);
    blendState->setAlphaOperation(BLEND_OPERATION::MAX, 0);
    blendState->setDestinationFactor(BLEND::ONE, 0);
    blendState->setAlphaDestinationFactor(BLEND::ONE, 0);
    blendState->setSourceFactor(BLEND::DEST_COLOR, 0);
    blendState->setAlphaSourceFactor(BLEND::ONE, 0);
    blendState->setWriteMask(ovGraphics::COLOR_WRITE_ALL, 0);
}

} // namespace ovVeldris
