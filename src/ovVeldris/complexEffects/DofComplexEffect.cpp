#include <ovVeldris/complexEffects/DofComplexEffect.h>

#include <algorithm>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/complexEffects/BlurKernel.h>
#include <ovVeldris/complexEffects/detail/EffectTargets.h>
#include <ovVeldris/core/ConstantSlot.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/shaders/MathsLib.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr ovMemory::StringView DOF_CLASS_NAME = "DofComplexEffect";
constexpr ovMemory::StringView ABORTING = "Aborting.";

// The small pictures, in the order of the targets of the first pass.
constexpr unsigned int NEAR_FIELD = 0;
constexpr unsigned int FAR_FIELD = 1;
constexpr unsigned int FADE = 2;

constexpr unsigned int PROJECTION_SLOT = 0;
constexpr unsigned int DISTANCES_SLOT = 1;
constexpr unsigned int SOURCE_SIZE_SLOT = 2; ///< of the down-sampling shader

constexpr unsigned int DOF_SOURCE_UNIT = 0;
constexpr unsigned int DOWN_DEPTH_UNIT = 1;
constexpr unsigned int FIRST_PLANE_UNIT = 1; ///< of the blend shader: near field, far field, fade
constexpr unsigned int BLEND_DEPTH_UNIT = 4;

constexpr unsigned int COLOR_SAMPLER_UNIT = 0;
constexpr unsigned int DEPTH_SAMPLER_UNIT = 1;

constexpr const char* PLANE_SUFFIXES[] = {"_TEX_1", "_TEX_2", "_TEX_3"};
constexpr const char* BLUR_SUFFIXES[] = {"_BLUR_N", "_BLUR_F", "_BLUR_FI"};
constexpr const char* BLUR_NAMES[] = {"Near", "Far", "Fade Info"};

ovMemory::String assemble(ovMemory::StringView file, ovMemory::StringView text) {
    return assembleShaderText({
        {"ovComputeLinearDepth", MathsLib::ovComputeLinearDepth()},
        {"DofComplexEffect.depth.ovsl", embedded::DofComplexEffect_depth},
        {file, text},
    });
}

ovMemory::Buffer<ovGraphics::shading::Define> linearDepthDefine(const DofComplexEffectInfo& info) {
    return info.linearDepth ? ovMemory::Buffer<ovGraphics::shading::Define>{{"LINEAR_DEPTH", ""}}
                            : ovMemory::Buffer<ovGraphics::shading::Define>{};
}

} // namespace

const SettingTable& DofComplexEffect::settings() {
    using Class = DofComplexEffect;
    using Rows = SettingRows<DofComplexEffect>;
    constexpr SettingRange STRENGTH = {.minimum = 0.0f, .maximum = float(MAX_BLUR_RADIUS)};
    constexpr ovMemory::StringView UNIT = "units of the view";
    const auto getStrength = [](const DofComplexEffect& effect) {
        return static_cast<int>(effect.getBlurStrength());
    };
    const auto setStrength = [](DofComplexEffect& effect, int strength) {
        effect.setBlurStrength(static_cast<unsigned int>(std::max(strength, 0)));
    };
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture,
                      "the sharp picture"),
        Rows::texture("source-depth", &Class::getSourceDepth, &Class::setSourceDepth,
                      "the depth of the picture"),
        Rows::camera("camera", &Class::getCamera, &Class::setCamera, "who saw the scene"),
        Rows::number("near", &Class::getNearPlaneDistance, &Class::setNearPlaneDistance, 10.0f,
                     "distance up to which everything is fully blurred")
            .in(NOT_NEGATIVE, UNIT),
        Rows::number("focus", &Class::getFocalPlaneDistance, &Class::setFocalPlaneDistance, 50.0f,
                     "distance of what is sharp")
            .in(NOT_NEGATIVE, UNIT),
        Rows::number("thickness", &Class::getFocalPlaneThickness, &Class::setFocalPlaneThickness, 0.0f,
                     "depth of the sharp zone around the focus")
            .in(NOT_NEGATIVE, UNIT),
        Rows::number("far", &Class::getFarPlaneDistance, &Class::setFarPlaneDistance, 100.0f,
                     "distance from which on everything is fully blurred")
            .in(NOT_NEGATIVE, UNIT),
        Rows::integer("strength", getStrength, setStrength, 3,
                      "radius of the blur in pixels of a picture of a quarter of the sides")
            .in(STRENGTH, "pixels")
            .atLoad(),
        Rows::flag("linear-depth", &Class::getLinearDepth, &Class::setLinearDepth, false,
                   "the depth is view z over the far plane")
            .atLoad(),
    };
    return TABLE;
}

uint64_t DofIdGenerator::operator()(const DofComplexEffectInfo& info) const {
    return uint64_t{info.blurStrength} << 32 | uint64_t{info.linearDepth};
}

ovMemory::UniquePtr<DofComplexEffect> DofComplexEffect::create(System* system) {
    return std::make_unique<DofComplexEffect>(system);
}

DofComplexEffect::DofComplexEffect(System* system)
    : MultiPassEffect(COMPLEX_EFFECT_TYPE::DOF, system, DOF_CLASS_NAME, settings()) {
    if (ovGraphics::System* graphics = _getGraphicsSystem())
        _createTargets(*graphics);
}

DofComplexEffect::~DofComplexEffect() {
    unload();
}

void DofComplexEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    if (!_isLoaded())
        return;
    constantSlot(*_down, SOURCE_SIZE_SLOT).setAsTextureSize(texture);
    _down->setTexture(texture, DOF_SOURCE_UNIT, 0);
    _blend->setTexture(texture, DOF_SOURCE_UNIT, 0);
    _prepareTextures();
    _prepareViewports();
    // The blurs follow the size of the small pictures.
    for (unsigned int plane = 0; plane < PLANE_COUNT; ++plane)
        _blurs[plane]->setSourceTexture(_planes[plane].get());
}

void DofComplexEffect::setSourceDepth(ovGraphics::Texture* depth) {
    _currentInfo.sourceDepth = depth;
    if (!_isLoaded())
        return;
    _down->setTexture(depth, DOWN_DEPTH_UNIT, 0);
    _blend->setTexture(depth, BLEND_DEPTH_UNIT, 0);
}

void DofComplexEffect::setCamera(ovGraphics::Camera* camera) {
    _currentInfo.camera = camera;
    if (_isLoaded())
        _writeCamera();
}

void DofComplexEffect::setNearPlaneDistance(float distance) {
    _currentInfo.nearPlaneDistance = distance;
    if (_isLoaded())
        _writeDistances();
}

void DofComplexEffect::setFocalPlaneDistance(float distance) {
    _currentInfo.focalPlaneDistance = distance;
    if (_isLoaded())
        _writeDistances();
}

void DofComplexEffect::setFocalPlaneThickness(float thickness) {
    _currentInfo.focalPlaneThickness = thickness;
    if (_isLoaded())
        _writeDistances();
}

void DofComplexEffect::setFarPlaneDistance(float distance) {
    _currentInfo.farPlaneDistance = distance;
    if (_isLoaded())
        _writeDistances();
}

void DofComplexEffect::setBlurStrength(unsigned int texels) {
    _currentInfo.blurStrength = texels;
}

void DofComplexEffect::setLinearDepth(bool isLinear) {
    _currentInfo.linearDepth = isLinear;
}

ovGraphics::Texture* DofComplexEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

ovGraphics::Texture* DofComplexEffect::getSourceDepth() const {
    return _currentInfo.sourceDepth.get();
}

ovGraphics::Camera* DofComplexEffect::getCamera() const {
    return _currentInfo.camera.get();
}

bool DofComplexEffect::_loadParts(ovGraphics::CompositorNode& node) {
    ovGraphics::System* graphics = _getGraphicsSystem();
    if (graphics)
        _createTargets(*graphics);
    if (!graphics || !_prepareTextures())
        return _fail("Error when loading the textures of ComplexEffect '", ABORTING);
    if (!_makeSamplers(*graphics))
        return _fail("Error when loading the sampler of ComplexEffect '", ABORTING);
    if (!_makeViewports(*graphics))
        return _fail("Could not load the Dof complex effect viewports for '", UNUSABLE_ADVICE);
    _makeBlurs(node);
    if (!_prepareShaders())
        return _fail("Error when loading the down sampling shader of ComplexEffect '", ABORTING);
    if (!_feedNode(node))
        return _fail("Error when feeding the compositor node of ComplexEffect '", ABORTING);
    return true;
}

void DofComplexEffect::_unloadParts() {
    _down.reset();
    _blend.reset();
    for (auto& blur : _blurs)
        blur.reset();
    for (auto& plane : _planes)
        if (plane)
            plane->unload();
    if (_output)
        _output->unload();
}

void DofComplexEffect::_createTargets(ovGraphics::System& graphics) {
    for (unsigned int plane = 0; plane < PLANE_COUNT; ++plane)
        createTarget(_planes[plane], graphics, _nameWith(PLANE_SUFFIXES[plane]));
    createTarget(_output, graphics, _nameWith("_OUT"));
}

bool DofComplexEffect::_prepareTextures() {
    const ovGraphics::Texture* source = getSourceTexture();
    const TargetShape shape = shapeOf(source);
    TargetShape field = shape;
    TargetShape fade = shape;
    if (source) {
        field = quarterOf(shape);
        field.format = ovGraphics::TextureUtils::getFormatWithAlphaEquivalent(shape.format);
        fade = quarterOf(shape);
        fade.format = ovGraphics::FORMAT::R16G16B16A16_FLOAT;
        fade.gammaCorrected = false;
    }
    return prepareTarget(*_planes[NEAR_FIELD], field) && prepareTarget(*_planes[FAR_FIELD], field) &&
           prepareTarget(*_planes[FADE], fade) && prepareTarget(*_output, shape);
}

bool DofComplexEffect::_makeSamplers(ovGraphics::System& graphics) {
    using enum ovGraphics::FILTER;
    _colorSampler = makeClampingSampler(graphics, _nameWith("_SAMPLER"), MIN_MAG_MIP_LINEAR);
    _depthSampler = makeClampingSampler(graphics, _nameWith("_SAMPLER_D"), MIN_MAG_MIP_POINT);
    return _colorSampler && _depthSampler;
}

bool DofComplexEffect::_makeViewports(ovGraphics::System& graphics) {
    _downViewport = makeViewport(graphics, _nameWith("_VIEWPORT_DOWN"));
    _highViewport = makeViewport(graphics, _nameWith("_VIEWPORT_HIGH"));
    if (!_downViewport || !_highViewport)
        return false;
    _prepareViewports();
    return true;
}

void DofComplexEffect::_prepareViewports() {
    _downViewport->setSize(_planes[FADE]->getWidth(), _planes[FADE]->getHeight());
    _highViewport->setSize(_output->getWidth(), _output->getHeight());
}

void DofComplexEffect::_makeBlurs(ovGraphics::CompositorNode& node) {
    for (unsigned int plane = 0; plane < PLANE_COUNT; ++plane) {
        _blurs[plane] = BlurComplexEffect::create(_getSystem());
        BlurComplexEffect& blur = *_blurs[plane];
        blur.setName(_nameWith(BLUR_SUFFIXES[plane]));
        blur.setKernelRadius(_loadedInfo.blurStrength);
        blur.setPreserveAlpha(true);
        blur.setCompositorNode(&node);
        blur.setSourceTexture(_planes[plane].get());
    }
}

bool DofComplexEffect::_prepareShaders() {
    static const ovMemory::String downText =
        assemble("DofComplexEffect.down.pixel.ovsl", embedded::DofComplexEffect_down_pixel);
    static const ovMemory::String blendText =
        assemble("DofComplexEffect.blend.pixel.ovsl", embedded::DofComplexEffect_blend_pixel);
    const ProgramPair& programs = _acquirePrograms();
    if (!programs.first)
        return false;
    // The text does not read the strength; it tells the programs apart.
    auto downDefines = linearDepthDefine(_loadedInfo);
    downDefines.insert(downDefines.begin(), {"BLUR_STRENGTH", std::to_string(_loadedInfo.blurStrength)});
    if (!_prepareProgram(*programs.first, downText, downDefines) ||
        !_prepareProgram(*programs.second, blendText, linearDepthDefine(_loadedInfo)))
        return false;

    _down = _makeShader("_DOWN", *programs.first);
    _down->setTexture(getSourceTexture(), DOF_SOURCE_UNIT, 0);
    _down->setTexture(getSourceDepth(), DOWN_DEPTH_UNIT, 0);
    _down->setSampler(_colorSampler.get(), COLOR_SAMPLER_UNIT, 0);
    _down->setSampler(_depthSampler.get(), DEPTH_SAMPLER_UNIT, 0);
    _blend = _makeShader("_BLEND", *programs.second);
    _blend->setTexture(getSourceTexture(), DOF_SOURCE_UNIT, 0);
    for (unsigned int plane = 0; plane < PLANE_COUNT; ++plane)
        _blend->setTexture(_blurs[plane]->getOutputTexture(), FIRST_PLANE_UNIT + plane, 0);
    _blend->setTexture(getSourceDepth(), BLEND_DEPTH_UNIT, 0);
    _blend->setSampler(_colorSampler.get(), COLOR_SAMPLER_UNIT, 0);
    _writeCamera();
    _writeDistances();
    constantSlot(*_down, SOURCE_SIZE_SLOT).setAsTextureSize(getSourceTexture());
    return _down->load() && _blend->load();
}

bool DofComplexEffect::_feedNode(ovGraphics::CompositorNode& node) {
    _blocks.append(node, *_down, *_downViewport,
                   {_planes[NEAR_FIELD].get(), _planes[FAR_FIELD].get(), _planes[FADE].get()});
    for (unsigned int plane = 0; plane < PLANE_COUNT; ++plane) {
        if (_blurs[plane]->load())
            continue;
        logMessage(_getSystem(),
                   "Error when loading a sub-component of ComplexEffect '" +
                       _nameWith("' : blurring effect (") + BLUR_NAMES[plane] + ") could not load. Aborting.",
                   DOF_CLASS_NAME);
        return false;
    }
    _blocks.append(node, *_blend, *_highViewport, {_output.get()});
    return true;
}

bool DofComplexEffect::_isLoaded() const {
    return _down && !_down->isUnloaded();
}

void DofComplexEffect::_writeCamera() {
    for (ovGraphics::Shader* shader : {_down.get(), _blend.get()})
        constantSlot(*shader, PROJECTION_SLOT).setAsProjectionParameters(getCamera());
}

void DofComplexEffect::_writeDistances() {
    const DofComplexEffectInfo& info = _currentInfo;
    for (ovGraphics::Shader* shader : {_down.get(), _blend.get()})
        constantSlot(*shader, DISTANCES_SLOT)
            .setFromVector({info.nearPlaneDistance, info.farPlaneDistance, info.focalPlaneDistance,
                            info.focalPlaneThickness * 0.5f});
}

} // namespace ovVeldris
