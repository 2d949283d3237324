#include <veldris/scene/ScenePicture.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <veldris/Session.h>
#include <veldris/pictures/PictureShader.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/scene/EnvironmentLight.h>
#include <veldris/scene/SceneEffects.h>
#include <veldris/scene/SceneGeometry.h>
#include <veldris/scene/ShadowGround.h>

namespace veldris {

using namespace ovGraphics;
using ovMaths::Vector;
using ovMemory::String;
using ovVeldris::SCENE_INPUT;

namespace {

// Variants of the entities' shaders; the first has the colours.
constexpr unsigned int SHADOW_VARIANT = 1;
constexpr unsigned int GEOMETRY_VARIANT = 2;
constexpr unsigned int SHADOW_SIDE = 2048; // texels
// Pushes what casts shadows away from the light, so that surfaces do not shadow themselves.
constexpr float SHADOW_BIAS = 4.0f;
constexpr float SHADOW_SLOPE_BIAS = 2.5f;
// Of surfaces that blend, what covers by this or less casts no shadow.
constexpr float SHADOW_COVERAGE = 0.5f;

// Pixels along a side of what a texel counts; strips are whole blocks high.
constexpr unsigned int COUNT_BLOCK = 8;

unsigned int blocksIn(unsigned int pixels) {
    return (pixels + COUNT_BLOCK - 1) / COUNT_BLOCK;
}

unsigned int stripRowsOf(const SceneSettings& settings) {
    // Effects look beyond the rows of a strip.
    if (!settings.effects.empty())
        return settings.height;
    const std::size_t rows = settings.stripSamples / (std::size_t{settings.width} * settings.samples);
    const std::size_t blocks = std::max<std::size_t>(rows / COUNT_BLOCK, 1);
    return static_cast<unsigned int>(std::min<std::size_t>(blocks * COUNT_BLOCK, settings.height));
}

/// The alpha up to which a surface casts no shadow.
float shadowCutoffOf(const ovVeldris::PbsMaterial& material, GLTF_ALPHA_MODE alphaMode) {
    // A masked surface is seen whole or not at all, so its shadow has the holes that are seen. Of a blended
    // one the shadow map cannot hold a share.
    const bool blends = alphaMode == GLTF_ALPHA_MODE::BLEND;
    return blends ? std::max(material.getAlphaCutoff(), SHADOW_COVERAGE) : material.getAlphaCutoff();
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
    if (!picture->_makeTextures(error) || !picture->_makeShaders(error)) {
        if (!settings.effects.empty())
            error +=
                "; effects that read the scene need all of its samples at once: ask for a smaller size or "
                "fewer samples.";
        return nullptr;
    }
    picture->_makePasses();
    return picture;
}

ScenePicture::ScenePicture(Session& session, const SceneSettings& settings)
    : _session(session)
    , _settings(settings)
    , _scale(static_cast<unsigned int>(std::lround(std::sqrt(settings.samples))))
    , _stripRows(stripRowsOf(settings))
    , _sampleViewport(Viewport::create(&session.getGraphics()))
    , _averageViewport(Viewport::create(&session.getGraphics()))
    , _countViewport(Viewport::create(&session.getGraphics()))
    , _camera(Camera::create(&session.getGraphics()))
    , _shadowCamera(Camera::create(&session.getGraphics()))
    , _shadowSurfaces(session.getGraphics(), SHADOW_VARIANT, false)
    , _groundQueue(RenderQueue::create(&session.getGraphics()))
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
    const unsigned int height = _stripRows * _scale;
    _color = makeTarget(graphics, "scene", FORMAT::R32G32B32A32_FLOAT, width, height);
    _depth = makeTarget(graphics, "scene depth", FORMAT::D32_FLOAT, width, height);
    if (_usesShadowMap())
        _shadowMap = makeTarget(graphics, "shadow map", FORMAT::D32_FLOAT, SHADOW_SIDE, SHADOW_SIDE);
    _notFinite = makeTarget(graphics, "numbers that are none", FORMAT::R32_FLOAT, blocksIn(_settings.width),
                            blocksIn(_settings.height));
    const bool usesNormals = readAny(_settings.effects, SCENE_INPUT::NORMALS);
    const bool usesGeometry = usesNormals || readAny(_settings.effects, SCENE_INPUT::POSITIONS);
    if (usesGeometry)
        _geometry = SceneGeometry::create(graphics, width, height, usesNormals, GEOMETRY_VARIANT);
    const bool made =
        _color && _depth && _notFinite && (_shadowMap || !_usesShadowMap()) && (_geometry || !usesGeometry);
    if (!made)
        error = _session.getLogger().take();
    return made;
}

bool ScenePicture::_makeShaders(String& error) {
    System& graphics = _session.getGraphics();
    _average = PictureShader::averageSamples(graphics, _settings.transparent);
    _count = PictureShader::countNotFinite(graphics, COUNT_BLOCK);
    if (_settings.ground)
        _ground = ShadowGround::create(graphics, *_shadowMap, *_shadowCamera);
    if (_settings.keepsDepth)
        _pickDepth = PictureShader::pickDepth(graphics);
    if (!_average || !_count || (_settings.keepsDepth && !_pickDepth) || (_settings.ground && !_ground) ||
        !_makeEffects()) {
        error = _session.getLogger().take();
        return false;
    }
    Texture& samples = _effects ? _effects->getPicture() : *_color;
    _average->setSource(samples);
    _count->setSource(samples);
    if (_pickDepth)
        _pickDepth->setSource(*_depth);
    if (_ground)
        _ground->addTo(*_groundQueue);
    return true;
}

bool ScenePicture::_usesShadowMap() const {
    return _settings.shadows || _settings.ground || readAny(_settings.effects, SCENE_INPUT::SHADOW_MAP);
}

bool ScenePicture::_makeEffects() {
    if (_settings.effects.empty())
        return true;
    const SceneResources scene = {.depth = _depth.get(),
                                  .positions = _geometry ? _geometry->getPositions() : nullptr,
                                  .normals = _geometry ? _geometry->getNormals() : nullptr,
                                  .shadowMap = _shadowMap.get(),
                                  .camera = _camera.get(),
                                  .lightCamera = _shadowCamera.get()};
    _effects = SceneEffects::create(_session, _settings.effects, {*_color, _settings.transparent, scene});
    return _effects != nullptr;
}

void ScenePicture::_makePasses() {
    if (_shadowMap)
        _appendShadowPasses();
    // Before the colours, which leave their depth for effects.
    if (_geometry)
        _geometry->appendPass(*_compositor->appendNode(), *_depth, *_solid, *_camera);
    _appendColorPasses();
    if (_effects)
        _effects->appendPasses(*_compositor->appendNode());
    _appendSamplePasses();
    _context->setName("scene");
    _context->setDescriptor({.texture = _color.get()});
    _context->setCompositor(_compositor.get());
}

void ScenePicture::_appendShadowPasses() {
    _shadowNode = _compositor->appendNode();
    CompositorOperationsBlock* block = _shadowNode->appendOperationsBlock();
    block->setDepthBuffer(_shadowMap.get());
    block->appendClearPass();
    for (RenderQueue* queue : {_solid.get(), _blended.get()}) {
        ScenePass* pass = block->appendScenePass();
        pass->setName("shadow");
        pass->setRenderQueue(queue);
        pass->setCamera(_shadowCamera.get());
        pass->setShaderVariant(SHADOW_VARIANT);
        pass->getRasterState().setDepthBias(SHADOW_BIAS, SHADOW_SLOPE_BIAS);
    }
}

void ScenePicture::_appendColorPasses() {
    CompositorOperationsBlock* block = _compositor->appendNode()->appendOperationsBlock();
    _colorBlock = block;
    block->setTarget(0, _color.get());
    block->setDepthBuffer(_depth.get());
    block->setViewport(_sampleViewport.get());
    const Vector& background = _settings.background;
    // Where the picture is transparent, alpha of the samples is the share of what is behind that is still
    // seen: what a solid surface has as alpha says nothing of that.
    if (_settings.transparent)
        block->appendClearPass()->setColor(0, 0.0f, 0.0f, 0.0f, 1.0f);
    else
        block->appendClearPass()->setColor(0, background.x, background.y, background.z, 1.0f);
    ScenePass* solid = block->appendScenePass();
    solid->setRenderQueue(_solid.get());
    solid->setCamera(_camera.get());
    if (_settings.transparent) {
        BlendState& blend = solid->getBlendState();
        blend.setBlendEnabled(true, 0);
        blend.setSourceFactor(BLEND::ONE, 0);
        blend.setDestinationFactor(BLEND::ZERO, 0);
        blend.setAlphaSourceFactor(BLEND::ZERO, 0);
        blend.setAlphaDestinationFactor(BLEND::ZERO, 0);
    }
    if (_ground)
        _appendBlendedPass("shadow on the ground", *_groundQueue);
    _appendBlendedPass("blended scene", *_blended)->setOrder(SCENE_ORDER::BACK_TO_FRONT);
}

ScenePass* ScenePicture::_appendBlendedPass(ovMemory::StringView name, RenderQueue& queue) {
    ScenePass* pass = _colorBlock->appendScenePass();
    pass->setName(name);
    pass->setRenderQueue(&queue);
    pass->setCamera(_camera.get());
    pass->getDepthStencilState().setDepthWriteEnabled(false);
    BlendState& blend = pass->getBlendState();
    blend.setBlendEnabled(true, 0);
    blend.setSourceFactor(BLEND::SRC_ALPHA, 0);
    blend.setDestinationFactor(BLEND::INV_SRC_ALPHA, 0);
    if (_settings.transparent) {
        blend.setAlphaSourceFactor(BLEND::ZERO, 0);
        blend.setAlphaDestinationFactor(BLEND::INV_SRC_ALPHA, 0);
    }
    return pass;
}

void ScenePicture::_appendSamplePasses() {
    CompositorNode* node = _compositor->appendNode();
    _averageBlock = node->appendOperationsBlock();
    _averageBlock->setViewport(_averageViewport.get());
    PostProcessPass* average = _averageBlock->appendPostProcessPass();
    average->setName("average of samples");
    average->setShader(_average->getShader());

    if (_pickDepth)
        _appendDepthPass(*node);

    CompositorOperationsBlock* block = node->appendOperationsBlock();
    block->setTarget(0, _notFinite.get());
    block->setViewport(_countViewport.get());
    PostProcessPass* count = block->appendPostProcessPass();
    count->setName("check of samples");
    count->setShader(_count->getShader());
}

void ScenePicture::_appendDepthPass(CompositorNode& node) {
    _pickBlock = node.appendOperationsBlock();
    _pickBlock->setViewport(_averageViewport.get());
    PostProcessPass* pass = _pickBlock->appendPostProcessPass();
    pass->setName("depth of pixels");
    pass->setShader(_pickDepth->getShader());
}

bool ScenePicture::setEnvironment(const EnvironmentLight* environment, Texture* behind) {
    constexpr unsigned int AFTER_CLEARING = 1;
    _environment = environment;
    _colorBlock->removePass(_surroundingsPass);
    _surroundingsPass = nullptr;
    _surroundings.reset();
    if (!environment || _settings.transparent)
        return true;
    _surroundings = ovVeldris::ImageEnvironmentEffect::create(&_session.getSystem());
    _surroundings->setName("surroundings");
    _surroundings->setSourceTexture(behind ? behind : environment->getPanorama());
    _surroundings->setSourceCamera(_camera.get());
    if (!_surroundings->load())
        return false;
    auto pass = std::make_unique<PostProcessPass>();
    pass->setName("surroundings");
    pass->setShader(_surroundings->getShader());
    _surroundingsPass = _colorBlock->insertPass(AFTER_CLEARING, std::move(pass));
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
    if (_settings.shadows)
        material.setShadowMapTexture(_shadowMap.get(), _shadowCamera.get(), ovVeldris::ShadowMapParameters());
    _lightDirection = material.getLightDirection();
}

bool ScenePicture::prepareSurface(const ovVeldris::PbsMaterial& material, GLTF_ALPHA_MODE alphaMode) {
    if (_geometry && !_geometry->add(*_solid, material, alphaMode))
        return false;
    const float cutoff = shadowCutoffOf(material, alphaMode);
    return !_shadowMap || (_shadowSurfaces.add(*_solid, material, alphaMode, cutoff) &&
                           _shadowSurfaces.add(*_blended, material, alphaMode, cutoff));
}

void ScenePicture::fitShadow(const BoundingBox& box) {
    const float radius = std::max(0.5f * box.getSize().getLengthVec3(), 1e-3f);
    const Vector direction = _lightDirection.getNormalizedVec3();
    _shadowCamera->lookAt(direction, Vector());
    _shadowCamera->setPosition(box.getCenter() - direction * (2.0f * radius));
    const float reach = _ground ? _ground->place(box, direction) : 0.0f;
    _shadowCamera->setOrthographic(2.0f * radius, 2.0f * radius, 0.5f * radius,
                                   2.0f * radius + std::max(1.5f * radius, reach));
}

ovMemory::UniquePtr<Texture> ScenePicture::draw(String& warning, String& error) {
    error = checkView(_settings.effects, _camera->isOrthographic());
    if (!error.empty())
        return nullptr;
    auto picture = makeTarget(_session.getGraphics(), "picture", FORMAT::R32G32B32A32_FLOAT, _settings.width,
                              _settings.height);
    _averageBlock->setTarget(0, picture.get());
    _timings.clear();
    if (_effects)
        _effects->light(-_lightDirection);
    if (_pickDepth) {
        _pixelDepth =
            makeTarget(_session.getGraphics(), "depth", FORMAT::R32_FLOAT, _settings.width, _settings.height);
        _pickBlock->setTarget(0, _pixelDepth.get());
    }
    bool drawn = picture && (_pixelDepth || !_pickDepth);
    for (unsigned int top = 0; drawn && top < _settings.height; top += _stripRows) {
        drawn = _drawStrip(top);
        _progress(static_cast<double>(std::min(top + _stripRows, _settings.height)) / _settings.height);
    }
    if (!drawn) {
        error = _session.getLogger().take();
        return nullptr;
    }
    if (const double wrong = _countNotFinite(); wrong > 0.0)
        warning = fmt::format("{:.0f} components of the picture are not numbers and were made black.", wrong);
    return picture;
}

/// Draws the rows from top on, as many as a strip has, or as are left.
bool ScenePicture::_drawStrip(unsigned int top) {
    const unsigned int rows = std::min(_stripRows, _settings.height - top);
    const int firstSample = static_cast<int>(top * _scale);
    const int firstRow = static_cast<int>(top);
    const int firstBlock = static_cast<int>(top / COUNT_BLOCK);
    _sampleViewport->setOrigin(0, -firstSample);
    _sampleViewport->setSize(_settings.width * _scale, _settings.height * _scale);
    _averageViewport->setOrigin(0, firstRow);
    _averageViewport->setSize(_settings.width, rows);
    _countViewport->setOrigin(0, firstBlock);
    _countViewport->setSize(blocksIn(_settings.width), blocksIn(rows));

    const auto scale = static_cast<float>(_scale);
    const auto width = static_cast<float>(_settings.width * _scale);
    const auto height = static_cast<float>(rows * _scale);
    _average->setConstants({scale, static_cast<float>(firstRow), width, height});
    _count->setConstants({scale, static_cast<float>(firstBlock), width, height});
    if (_pickDepth)
        _pickDepth->setConstants({scale, static_cast<float>(firstRow), width, height});
    if (_shadowNode)
        _shadowNode->setActive(top == 0); // it serves all strips
    if (!_session.getGraphics().frame(_context.get()))
        return false;
    _addTimings();
    return true;
}

void ScenePicture::_addTimings() {
    const auto& strip = _session.getGraphics().getPassTimings();
    if (_timings.empty()) {
        _timings = strip;
        return;
    }
    // The passes of the shadow map come first, and in the first strip only.
    const std::size_t shadowPasses = _timings.size() - strip.size();
    for (std::size_t i = 0; i < strip.size(); ++i)
        _timings[shadowPasses + i].milliseconds += strip[i].milliseconds;
}

double ScenePicture::_countNotFinite() {
    const auto counts = _notFinite->convertToImage();
    double sum = 0.0;
    for (unsigned int y = 0; counts && y < counts->getHeight(); ++y)
        for (unsigned int x = 0; x < counts->getWidth(); ++x)
            sum += static_cast<double>(counts->getComponent(x, y, 0));
    return sum;
}

} // namespace veldris
