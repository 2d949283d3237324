#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr unsigned int COPY_SOURCE_UNIT = 0;

constexpr EffectSamplerSettings COPY_DEFAULT_SAMPLER = {
    .name = "VELDRIS_TEX_COPY_SAMPLER",
    // A copy of the same size must give every texel as it is.
    .filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT,
    .address = ovGraphics::TEXTURE_ADDRESS::CLAMP,
    .borderColor = std::array{0.0f, 0.0f, 0.0f, 0.0f},
};

} // namespace

const SettingTable& TextureCopyEffect::settings() {
    using Class = TextureCopyEffect;
    using Rows = SettingRows<TextureCopyEffect>;
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture,
                      "the picture to draw"),
        Rows::sampler("source-sampler", &Class::getSourceSampler, &Class::setSourceSampler,
                      "how the picture is read"),
    };
    return TABLE;
}

ovMemory::UniquePtr<TextureCopyEffect> TextureCopyEffect::create(System* system) {
    return std::make_unique<TextureCopyEffect>(system);
}

TextureCopyEffect::TextureCopyEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::TEXTURE_COPY, system, "texture copy", "TextureCopyEffect", settings()) {}

TextureCopyEffect::~TextureCopyEffect() = default;

void TextureCopyEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    _bindTextureIfLoaded(texture, COPY_SOURCE_UNIT);
}

void TextureCopyEffect::setSourceSampler(ovGraphics::Sampler* sampler) {
    _currentInfo.sourceSampler = sampler;
    _bindSamplerIfLoaded(sampler, COPY_DEFAULT_SAMPLER.name, COPY_SOURCE_UNIT);
}

ovGraphics::Texture* TextureCopyEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

ovGraphics::Sampler* TextureCopyEffect::getSourceSampler() const {
    return _currentInfo.sourceSampler.get();
}

void TextureCopyEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleShaderText({{"TextureCopyEffect.pixel.ovsl", embedded::TextureCopyEffect_pixel}});
    sources.setPixelMemory(pixelText);
}

void TextureCopyEffect::_bindResources(ovGraphics::Shader& shader) {
    shader.setTexture(getSourceTexture(), COPY_SOURCE_UNIT, 0);
    ovGraphics::Sampler* defaultSampler = _prepareSampler(COPY_DEFAULT_SAMPLER);
    ovGraphics::Sampler* sampler = getSourceSampler();
    shader.setSampler(sampler ? sampler : defaultSampler, COPY_SOURCE_UNIT, 0);
}

} // namespace ovVeldris
