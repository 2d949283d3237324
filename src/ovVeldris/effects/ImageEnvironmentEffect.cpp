#include <ovVeldris/effects/ImageEnvironmentEffect.h>

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

using PROJECTION = IMAGE_ENVIRONMENT_PROJECTION;

constexpr unsigned int ENVIRONMENT_SOURCE_UNIT = 0;

constexpr EffectSamplerSettings ENVIRONMENT_DEFAULT_SAMPLER = {
    .name = "VELDRIS_IMAGE_ENVIRONMENT_SAMPLER",
    .filter = ovGraphics::FILTER::MIN_MAG_MIP_LINEAR,
    .address = ovGraphics::TEXTURE_ADDRESS::CLAMP,
    .borderColor = std::array{0.0f, 0.0f, 0.0f, 0.0f},
};

ovMemory::StringView defineOf(PROJECTION projection) {
    switch (projection) {
    case PROJECTION::FLAT:
        return "FLAT";
    case PROJECTION::CUBE:
        return "CUBE";
    default:
        return "EQUIRECTANGULAR";
    }
}

} // namespace

const SettingTable& ImageEnvironmentEffect::settings() {
    using Class = ImageEnvironmentEffect;
    using Rows = SettingRows<ImageEnvironmentEffect>;
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture, "the image"),
        Rows::sampler("source-sampler", &Class::getSourceSampler, &Class::setSourceSampler,
                      "how the image is read"),
        Rows::camera("source-camera", &Class::getSourceCamera, &Class::setSourceCamera,
                     "whose view is drawn"),
        Rows::enumeration("source-projection", ovMemory::enumTableOf<PROJECTION>(),
                          &Class::getSourceProjection, &Class::setSourceProjection, PROJECTION::AUTO,
                          "how the image is read; a picture is no cube, which draws black")
            .atLoad(),
    };
    return TABLE;
}

// By the projection that is really used: AUTO and the choice that it leads to share one program.
uint64_t ImageEnvironmentIdGenerator::operator()(const ImageEnvironmentEffectInfo& info) const {
    switch (ImageEnvironmentEffect::getRequiredProjection(info)) {
    case PROJECTION::FLAT:
        return 4;
    case PROJECTION::CUBE:
        return 1;
    default:
        return 2;
    }
}

ovMemory::UniquePtr<ImageEnvironmentEffect> ImageEnvironmentEffect::create(System* system) {
    return std::make_unique<ImageEnvironmentEffect>(system);
}

// Messages call the kind a texture copy: hosts filter the log by that line.
ImageEnvironmentEffect::ImageEnvironmentEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::IMAGE_ENVIRONMENT, system, "texture copy", "ImageEnvironmentEffect",
                   settings()) {}

ImageEnvironmentEffect::~ImageEnvironmentEffect() = default;

void ImageEnvironmentEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    _bindTextureIfLoaded(texture, ENVIRONMENT_SOURCE_UNIT);
}

void ImageEnvironmentEffect::setSourceSampler(ovGraphics::Sampler* sampler) {
    _currentInfo.sourceSampler = sampler;
    _bindSamplerIfLoaded(sampler, ENVIRONMENT_DEFAULT_SAMPLER.name, ENVIRONMENT_SOURCE_UNIT);
}

void ImageEnvironmentEffect::setSourceCamera(ovGraphics::Camera* camera) {
    _currentInfo.sourceCamera = camera;
    ovGraphics::Shader* shader = _getLoadedShader();
    // A flat image has no constants, so there is no slot for a camera.
    if (shader && _loadedInfo.sourceProjection != PROJECTION::FLAT)
        constantSlot(*shader, 0).setAsCamCornersWorld(camera);
}

void ImageEnvironmentEffect::setSourceProjection(IMAGE_ENVIRONMENT_PROJECTION projection) {
    _currentInfo.sourceProjection = projection;
}

ovGraphics::Texture* ImageEnvironmentEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

ovGraphics::Sampler* ImageEnvironmentEffect::getSourceSampler() const {
    return _currentInfo.sourceSampler.get();
}

ovGraphics::Camera* ImageEnvironmentEffect::getSourceCamera() const {
    return _currentInfo.sourceCamera.get();
}

IMAGE_ENVIRONMENT_PROJECTION
ImageEnvironmentEffect::getRequiredProjection(const ImageEnvironmentEffectInfo& info) {
    if (info.sourceProjection != PROJECTION::AUTO)
        return info.sourceProjection;
    const bool isFlat =
        info.sourceTexture && info.sourceTexture->getTexType() == ovGraphics::TEXTURE_TYPE::TEXTURE_2D;
    return isFlat ? PROJECTION::EQUIRECTANGULAR : PROJECTION::CUBE;
}

void ImageEnvironmentEffect::_resolveLoadedInfo() {
    // Settled at the load. The texture may change its type later, and unloading must release the very program
    // that loading acquired.
    _loadedInfo.sourceProjection = getRequiredProjection(_loadedInfo);
}

void ImageEnvironmentEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String vertexText =
        assembleShaderText({{"ImageEnvironmentEffect.vertex.ovsl", embedded::ImageEnvironmentEffect_vertex}});
    static const ovMemory::String pixelText = assembleShaderText({
        {"directionToMapUv.ovsl", embedded::directionToMapUv},
        {"ImageEnvironmentEffect.pixel.ovsl", embedded::ImageEnvironmentEffect_pixel},
    });
    const ovMemory::StringView define = defineOf(_loadedInfo.sourceProjection);
    sources.setVertexMemory(vertexText);
    sources.setPixelMemory(pixelText);
    sources.addDefineMacroVertex(define, "");
    sources.addDefineMacroPixel(define, "");
}

void ImageEnvironmentEffect::_bindResources(ovGraphics::Shader& shader) {
    shader.setTexture(getSourceTexture(), ENVIRONMENT_SOURCE_UNIT, 0);
    ovGraphics::Sampler* defaultSampler = _prepareSampler(ENVIRONMENT_DEFAULT_SAMPLER);
    ovGraphics::Sampler* sampler = getSourceSampler();
    shader.setSampler(sampler ? sampler : defaultSampler, ENVIRONMENT_SOURCE_UNIT, 0);
    if (_loadedInfo.sourceProjection != PROJECTION::FLAT)
        constantSlot(shader, 0).setAsCamCornersWorld(getSourceCamera());
}

} // namespace ovVeldris
