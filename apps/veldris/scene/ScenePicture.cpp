#include <veldris/scene/ScenePicture.h>

#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <veldris/Session.h>
#include <veldris/scene/EnvironmentLight.h>

namespace veldris {

using namespace ovGraphics;
using ovMaths::Vector;
using ovMemory::String;

namespace {

constexpr unsigned int EVERY_STAGE = 0;
constexpr unsigned int COLOUR_VARIANT = 0;
constexpr unsigned int DEPTH_VARIANT = 1;
constexpr unsigned int SHADOW_SIDE = 2048; // texels
// Pushes what casts shadows away from the light, so that surfaces do not shadow themselves.
constexpr float SHADOW_BIAS = 4.0f;
constexpr float SHADOW_SLOPE_BIAS = 2.5f;
// Of surfaces that blend, what covers less casts no shadow.
constexpr float SHADOW_COVERAGE = 0.5f;

ovMemory::UniquePtr<Texture> makeTarget(System& system, ovMemory::StringView name, FORMAT format,
                                        unsigned int width, unsigned int height) {
    auto texture = Texture::create(&system);
    texture->setName(name);
    texture->setFormat(format);
    texture->setWidth(width);
    texture->setHeight(height);
    texture->setMipCount(1);
    texture->setUsableAsRenderTarget(true);
    return texture->load() ? std::move(texture) : nullptr;
}

/// Averages blocks of scale x scale samples; counts those that are not finite and takes them as black.
ovMemory::UniquePtr<ovImages::Image> reduced(const float* samples, unsigned int width, unsigned int height,
                                             unsigned int scale, std::size_t& wrong) {
    auto image = std::make_unique<ovImages::Image>(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT,
                                                   ovImages::COLOUR_ENCODING::LINEAR);
    const std::size_t pitch = std::size_t{width} * scale * 4;
    const double weight = 1.0 / (static_cast<double>(scale) * scale);
    ovMemory::Buffer<float> row(std::size_t{width} * 4);
    for (unsigned int y = 0; y < height; ++y) {
        for (std::size_t component = 0; component < row.size(); ++component) {
            const std::size_t x = component / 4;
            const std::size_t channel = component % 4;
            double sum = 0.0;
            for (unsigned int j = 0; j < scale; ++j) {
                for (unsigned int i = 0; i < scale; ++i) {
                    const float sample =
                        samples[(std::size_t{y} * scale + j) * pitch + (x * scale + i) * 4 + channel];
                    wrong += std::isfinite(sample) ? 0 : 1;
                    sum += std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
                }
            }
            row[component] = channel == 3 ? 1.0f : static_cast<float>(sum * weight);
        }
        std::memcpy(image->getBytes().data() + y * row.size() * sizeof(float), row.data(),
                    row.size() * sizeof(float));
    }
    return image;
}

/// The sampler that a shader reads a texture of the surface with, so that holes and their shadows agree.
Sampler* samplerOf(const Shader& shader, const Texture* texture) {
    for (unsigned int unit = 0; unit < ovVeldris::PbsMaterialParameters::PACKED_TEXTURE_COUNT; ++unit)
        if (shader.getTexture(unit, EVERY_STAGE) == texture)
            return shader.getSampler(unit, EVERY_STAGE);
    return nullptr;
}

} // namespace

ovMemory::UniquePtr<ScenePicture> ScenePicture::create(Session& session, const SceneSettings& settings,
                                                       String& error) {
    ovMemory::UniquePtr<ScenePicture> picture(new ScenePicture(session, settings));
    const unsigned int limit = session.getGraphics().getDeviceInfo()->maxTextureSize;
    const unsigned int scale = picture->_scale;
    if (std::max(settings.width, settings.height) > limit / scale) {
        error = fmt::format(
            "the picture of {} x {} pixels with {} samples takes {} x {}, and the device draws {} at "
            "most; ask for a smaller size or fewer samples.",
            settings.width, settings.height, settings.samples, settings.width * scale,
            settings.height * scale, limit);
        return nullptr;
    }
    if (!picture->_makeTextures(error))
        return nullptr;
    picture->_makePasses();
    return picture;
}

ScenePicture::ScenePicture(Session& session, const SceneSettings& settings)
    : _session(session)
    , _settings(settings)
    , _scale(static_cast<unsigned int>(std::lround(std::sqrt(settings.samples))))
    , _camera(Camera::create(&session.getGraphics()))
    , _shadowCamera(Camera::create(&session.getGraphics()))
    , _solid(RenderQueue::create(&session.getGraphics()))
    , _blended(RenderQueue::create(&session.getGraphics()))
    , _compositor(Compositor::create(&session.getGraphics()))
    , _context(RenderContext::create(&session.getGraphics())) {}

ScenePicture::~ScenePicture() = default;

float ScenePicture::getAspect() const {
    return static_cast<float>(_settings.width) / static_cast<float>(_settings.height);
}

bool ScenePicture::_makeTextures(String& error) {
    System& graphics = _session.getGraphics();
    const unsigned int width = _settings.width * _scale;
    const unsigned int height = _settings.height * _scale;
    _colour = makeTarget(graphics, "scene", FORMAT::R32G32B32A32_FLOAT, width, height);
    _depth = makeTarget(graphics, "scene depth", FORMAT::D32_FLOAT, width, height);
    if (_settings.shadows)
        _shadowMap = makeTarget(graphics, "shadow map", FORMAT::D32_FLOAT, SHADOW_SIDE, SHADOW_SIDE);
    const bool made = _colour && _depth && (_shadowMap || !_settings.shadows);
    if (!made)
        error = _session.getLogger().take();
    return made;
}

void ScenePicture::_makePasses() {
    if (_shadowMap)
        _appendShadowPasses();
    _appendColourPasses();
    _context->setName("scene");
    _context->setDescriptor({.texture = _colour.get()});
    _context->setCompositor(_compositor.get());
}

void ScenePicture::_appendShadowPasses() {
    CompositorOperationsBlock* block = _compositor->appendNode()->appendOperationsBlock();
    block->setDepthBuffer(_shadowMap.get());
    block->appendClearPass();
    for (RenderQueue* queue : {_solid.get(), _blended.get()}) {
        ScenePass* pass = block->appendScenePass();
        pass->setName("shadow");
        pass->setRenderQueue(queue);
        pass->setCamera(_shadowCamera.get());
        pass->setShaderVariant(DEPTH_VARIANT);
        pass->getRasterState().setDepthBias(SHADOW_BIAS, SHADOW_SLOPE_BIAS);
    }
}

void ScenePicture::_appendColourPasses() {
    CompositorOperationsBlock* block = _compositor->appendNode()->appendOperationsBlock();
    _colourBlock = block;
    block->setTarget(0, _colour.get());
    block->setDepthBuffer(_depth.get());
    const Vector& background = _settings.background;
    block->appendClearPass()->setColour(0, background.x, background.y, background.z, 1.0f);
    ScenePass* solid = block->appendScenePass();
    solid->setRenderQueue(_solid.get());
    solid->setCamera(_camera.get());

    ScenePass* blended = block->appendScenePass();
    blended->setName("blended scene");
    blended->setRenderQueue(_blended.get());
    blended->setCamera(_camera.get());
    blended->setOrder(SCENE_ORDER::BACK_TO_FRONT);
    blended->getDepthStencilState().setDepthWriteEnabled(false);
    BlendState& blend = blended->getBlendState();
    blend.setBlendEnabled(true, 0);
    blend.setSourceFactor(BLEND::SRC_ALPHA, 0);
    blend.setDestinationFactor(BLEND::INV_SRC_ALPHA, 0);
}

bool ScenePicture::setEnvironment(const EnvironmentLight* environment) {
    constexpr unsigned int AFTER_CLEARING = 1;
    _environment = environment;
    _colourBlock->removePass(_surroundingsPass);
    _surroundingsPass = nullptr;
    _surroundings.reset();
    if (!environment)
        return true;
    _surroundings = ovVeldris::ImageEnvironmentEffect::create(&_session.getSystem());
    _surroundings->setName("surroundings");
    _surroundings->setSourceTexture(environment->getPanorama());
    _surroundings->setSourceCamera(_camera.get());
    if (!_surroundings->load())
        return false;
    auto pass = std::make_unique<PostProcessPass>();
    pass->setName("surroundings");
    pass->setShader(_surroundings->getShader());
    _surroundingsPass = _colourBlock->insertPass(AFTER_CLEARING, std::move(pass));
    return true;
}

void ScenePicture::light(ovVeldris::PbsMaterial& material) {
    if (_settings.lightDirection)
        material.setLightDirection(*_settings.lightDirection);
    if (_settings.lightColor)
        material.setLightColor(*_settings.lightColor);
    if (_environment)
        _environment->light(material);
    material.setCombineLightAndEnvironment(_environment && _settings.lightBesideEnvironment);
    if (_shadowMap)
        material.setShadowMapTexture(_shadowMap.get(), _shadowCamera.get(), ovVeldris::ShadowMapParameters());
    _lightDirection = material.getLightDirection();
}

bool ScenePicture::castShadow(const ovVeldris::PbsMaterial& material, bool hasHoles) {
    if (!_shadowMap)
        return true;
    const DepthShader* depthShader = hasHoles ? _makeHolesShader(material) : _getSolidShader();
    if (!depthShader)
        return false;
    for (RenderQueue* queue : {_solid.get(), _blended.get()}) {
        for (unsigned int i = 0; i < queue->getEntityCount(); ++i) {
            Entity* entity = queue->getEntity(i);
            if (entity->getShader(COLOUR_VARIANT) == material.getShader())
                entity->setShader(depthShader->getShader(), DEPTH_VARIANT);
        }
    }
    return true;
}

DepthShader* ScenePicture::_makeHolesShader(const ovVeldris::PbsMaterial& material) {
    DepthShaderSettings settings;
    settings.alphaTexture = material.getAlphaTexture();
    settings.sampler = samplerOf(*material.getShader(), settings.alphaTexture);
    settings.alphaChannel = static_cast<unsigned int>(material.getAlphaTextureChannels());
    settings.alpha = material.getMixAlphaFactorAndTexture() ? material.getAlpha() : 1.0f;
    settings.alphaCutoff = std::max(material.getAlphaCutoff(), SHADOW_COVERAGE);
    return _depthShaders.emplace_back(DepthShader::create(&_session.getGraphics(), settings)).get();
}

// One for all materials without holes, so that equal meshes are drawn at once whatever they are made of.
DepthShader* ScenePicture::_getSolidShader() {
    if (!_solidDepthShader)
        _solidDepthShader = DepthShader::create(&_session.getGraphics(), {});
    return _solidDepthShader.get();
}

void ScenePicture::fitShadow(const BoundingBox& box) {
    const float radius = std::max(0.5f * box.getSize().getLengthVec3(), 1e-3f);
    const Vector direction = _lightDirection.getNormalizedVec3();
    _shadowCamera->lookAt(direction, Vector());
    _shadowCamera->setPosition(box.getCenter() - direction * (2.0f * radius));
    _shadowCamera->setOrthographic(2.0f * radius, 2.0f * radius, 0.5f * radius, 3.5f * radius);
}

ovMemory::UniquePtr<ovImages::Image> ScenePicture::draw(String& warning, String& error) {
    if (!_session.getGraphics().frame(_context.get())) {
        error = _session.getLogger().take();
        return nullptr;
    }
    const auto bytes = _colour->readBack();
    if (!bytes) {
        error = _session.getLogger().take();
        return nullptr;
    }
    std::size_t wrong = 0;
    auto image = reduced(reinterpret_cast<const float*>(bytes->data()), _settings.width, _settings.height,
                         _scale, wrong);
    if (wrong > 0)
        warning = fmt::format("{} components of the picture are not numbers and were made black.", wrong);
    return image;
}

} // namespace veldris
