#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/effects/atmosphere/AtmosphereConstants.h>

namespace ovVeldris {

namespace {

constexpr unsigned int COLOR_UNIT = 0;
constexpr unsigned int DEPTH_UNIT = 1;
constexpr unsigned int SUN_TABLE_UNIT = 2;
constexpr unsigned int MULTI_TABLE_UNIT = 3;
constexpr unsigned int SHADOW_UNIT = 4;

using Rows = SettingRows<AtmosphereEffect>;
using Get = ovMaths::Vector (AtmosphereEffect::*)() const;
using Set = void (AtmosphereEffect::*)(const ovMaths::Vector&);
using GetCount = unsigned int (AtmosphereEffect::*)() const;
using SetCount = void (AtmosphereEffect::*)(unsigned int);

Setting coefficient(ovMemory::StringView name, Get get, Set set, const ovMaths::Vector& byDefault,
                    ovMemory::StringView help) {
    return Rows::vector(name, 3, get, set, byDefault, help).in(NOT_NEGATIVE, "per megametre");
}

/// A count or a side that waits for load().
Setting count(ovMemory::StringView name, GetCount get, SetCount set, unsigned int byDefault,
              const SettingRange& range, ovMemory::StringView help) {
    const auto getInt = [get](const AtmosphereEffect& effect) { return static_cast<int>((effect.*get)()); };
    const auto setInt = [set](AtmosphereEffect& effect, int value) {
        (effect.*set)(static_cast<unsigned int>(value));
    };
    return Rows::integer(name, getInt, setInt, static_cast<int>(byDefault), help).in(range).atLoad();
}

} // namespace

const SettingTable& AtmosphereEffect::settings() {
    using Class = AtmosphereEffect;
    static const AtmosphereEffectInfo DEFAULTS;
    constexpr SettingRange STEPS = {.minimum = 0.0f, .maximum = 1024.0f};
    constexpr SettingRange SIDE = {.minimum = 1.0f, .maximum = 4096.0f};
    // Beyond these the ellipse that stands for the phase function opens, and its light is negative or
    // endless.
    constexpr SettingRange ASYMMETRY = {.minimum = -0.93f, .maximum = 0.93f};
    constexpr SettingRange ANGLE = {.minimum = 0.0f, .maximum = 90.0f};
    const auto setShadowTexture = [](Class& effect, ovGraphics::Texture* texture) {
        effect.setShadowSource(texture, effect.getShadowCamera());
    };
    const auto setShadowCamera = [](Class& effect, ovGraphics::Camera* camera) {
        effect.setShadowSource(effect.getShadowTexture(), camera);
    };
    static const SettingTable TABLE = {
        Rows::texture("source-color-texture", &Class::getSourceColorTexture, &Class::setSourceColorTexture,
                      "the picture that the air dims and lights"),
        Rows::texture("source-depth-texture", &Class::getSourceDepthTexture, &Class::setSourceDepthTexture,
                      "the depth of the picture, where rays end"),
        Rows::texture("shadow-texture", &Class::getShadowTexture, setShadowTexture, "shadow map of the sun"),
        Rows::camera("shadow-camera", &Class::getShadowCamera, setShadowCamera, "who drew the shadow map"),
        Rows::vector("sun-position", 3, &Class::getSunPosition, &Class::setSunPosition, DEFAULTS.sunPosition,
                     "direction towards the sun, y up"),
        Rows::vector("planet-albedo", 3, &Class::getPlanetAlbedo, &Class::setPlanetAlbedo,
                     DEFAULTS.planetAlbedo, "the share of light that the ground gives back")
            .in(UNIT_RANGE),
        coefficient("rayleigh-scattering", &Class::getRayleighScattering, &Class::setRayleighScattering,
                    DEFAULTS.rayleigh.scattering, "what air scatters"),
        coefficient("rayleigh-extinction", &Class::getRayleighExtinction, &Class::setRayleighExtinction,
                    DEFAULTS.rayleigh.extinction, "what air takes away in all, for the tables"),
        coefficient("rayleigh-absorb", &Class::getRayleighAbsorb, &Class::setRayleighAbsorb,
                    DEFAULTS.rayleigh.absorb, "what air absorbs"),
        coefficient("mie-scattering", &Class::getMieScattering, &Class::setMieScattering,
                    DEFAULTS.mie.scattering, "what haze scatters"),
        coefficient("mie-extinction", &Class::getMieExtinction, &Class::setMieExtinction,
                    DEFAULTS.mie.extinction, "what haze takes away in all, for the tables"),
        coefficient("mie-absorb", &Class::getMieAbsorb, &Class::setMieAbsorb, DEFAULTS.mie.absorb,
                    "what haze absorbs"),
        coefficient("ozone-scattering", &Class::getOzoneScattering, &Class::setOzoneScattering,
                    DEFAULTS.ozone.scattering, "what ozone scatters, for the tables"),
        coefficient("ozone-extinction", &Class::getOzoneExtinction, &Class::setOzoneExtinction,
                    DEFAULTS.ozone.extinction, "what ozone takes away in all, for the tables"),
        coefficient("ozone-absorb", &Class::getOzoneAbsorb, &Class::setOzoneAbsorb, DEFAULTS.ozone.absorb,
                    "what ozone absorbs"),
        Rows::number("mie-g", &Class::getMieG, &Class::setMieG, DEFAULTS.mieG,
                     "how much haze scatters forwards")
            .in(ASYMMETRY),
        Rows::number("rayleigh-height-density-factor", &Class::getRayleighHeightDensityFactor,
                     &Class::setRayleighHeightDensityFactor, 1.0f,
                     "how much faster air thins with the height")
            .in(NOT_NEGATIVE),
        Rows::number("mie-height-density-factor", &Class::getMieHeightDensityFactor,
                     &Class::setMieHeightDensityFactor, 1.0f, "how much faster haze thins with the height")
            .in(NOT_NEGATIVE),
        Rows::number("ozone-height-density-factor", &Class::getOzoneHeightDensityFactor,
                     &Class::setOzoneHeightDensityFactor, 1.0f, "how much thinner the layer of ozone is")
            .in(NOT_NEGATIVE),
        Rows::number("distance-factor", &Class::getDistanceFactor, &Class::setDistanceFactor, 1.0f,
                     "how much farther away the air takes the scene to be")
            .in(POSITIVE),
        Rows::number("sun-illuminance-factor", &Class::getSunIlluminanceFactor,
                     &Class::setSunIlluminanceFactor, 5.0f, "how bright the sun is, in the air and as a disc")
            .in(NOT_NEGATIVE),
        Rows::number("sun-angular-radius", &Class::getSunAngularRadius, &Class::setSunAngularRadius, 0.545f,
                     "half the angle that the disc is wide")
            .in(ANGLE, "degrees"),
        count("raymarch-sample-count", &Class::getSunLutSampleCount, &Class::setRaymarchSampleCount,
              DEFAULTS.sunLutSampleCount, STEPS, "steps of the table of the sun; the march itself has 32"),
        count("multi-scattering-lut-sphere-sample-count", &Class::getMultiScatteringLutSphereSampleCount,
              &Class::setMultiScatteringLutSphereSampleCount, DEFAULTS.multiScatteringLutSphereSampleCount,
              STEPS, "the table of many scatterings looks into the square of so many directions"),
        count("multi-scattering-lut-march-sample-count", &Class::getMultiScatteringLutMarchSampleCount,
              &Class::setMultiScatteringLutMarchSampleCount, DEFAULTS.multiScatteringLutMarchSampleCount,
              STEPS, "steps in each of these directions"),
        count("sun-transmittance-lut-width", &Class::getSunTransmittanceLutWidth,
              &Class::setSunTransmittanceLutWidth, DEFAULTS.sunTransmittanceLutWidth, SIDE,
              "texels of the table of the sun by its angle"),
        count("sun-transmittance-lut-height", &Class::getSunTransmittanceLutHeight,
              &Class::setSunTransmittanceLutHeight, DEFAULTS.sunTransmittanceLutHeight, SIDE,
              "texels of the table of the sun by the height"),
        count("multi-scattering-lut-width", &Class::getMultiScatteringLutWidth,
              &Class::setMultiScatteringLutWidth, DEFAULTS.multiScatteringLutWidth, SIDE,
              "texels of the table of many scatterings by the sun's angle"),
        count("multi-scattering-lut-height", &Class::getMultiScatteringLutHeight,
              &Class::setMultiScatteringLutHeight, DEFAULTS.multiScatteringLutHeight, SIDE,
              "texels of the table of many scatterings by the height"),
        Rows::enumeration("shadow-sampling-method", ovMemory::enumTableOf<SHADOW_MAP_PCF>(),
                          &Class::getShadowSamplingMethod, &Class::setShadowSamplingMethod,
                          SHADOW_MAP_PCF::PCF_9_TAP, "how the shadow map is smoothed")
            .atLoad(),
        Rows::number("shadow-depth-bias", &Class::getShadowDepthBias, &Class::setShadowDepthBias, -1.0f,
                     "depth by which shadows begin behind what casts them; below 0 the usual one")
            .in({.minimum = -1.0f, .maximum = 1.0f})
            .atLoad(),
        Rows::flag("shadow-debug", &Class::getShadowDebug, &Class::setShadowDebug, false,
                   "shadow what lies outside the shadow map")
            .atLoad(),
        Rows::flag("use-half-float-for-luts", &Class::getUseHalfFloatForLuts, &Class::setUseHalfFloatForLuts,
                   false, "halve the memory of the tables")
            .atLoad(),
        Rows::flag("only-scatter-on-objects", &Class::getOnlyScatterOnObjects,
                   &Class::setOnlyScatterOnObjects, false, "leave pixels without an object as they are")
            .atLoad(),
        Rows::flag("display-sun", &Class::getDisplaySun, &Class::setDisplaySun, true, "draw the disc")
            .atLoad(),
        Rows::flag("debug-numerical-instability", &Class::getDebugNumericalInstability,
                   &Class::setDebugNumericalInstability, false, "paint red what is not a number")
            .atLoad(),
    };
    return TABLE;
}

ovMemory::UniquePtr<AtmosphereEffect> AtmosphereEffect::create(System* system) {
    return std::make_unique<AtmosphereEffect>(system);
}

// Messages call the kind a complex effect: hosts filter the log by these lines.
AtmosphereEffect::AtmosphereEffect(System* system)
    : ScreenEffect(EFFECT_TYPE::ATMOSPHERE, system, "atmosphere complex", "AtmosphereEffect", settings())
    , _luts(system, getName()) {}

AtmosphereEffect::~AtmosphereEffect() = default;

bool AtmosphereEffect::load() {
    _luts.setName(getName()); // which its messages tell
    if (!ScreenEffect::load())
        return false;
    _luts.setInfo(_loadedInfo, _lutSampler.get());
    return _luts.load() && refreshLuts();
}

void AtmosphereEffect::unload() {
    ScreenEffect::unload();
    _luts.unload();
    _loadedInfo = {};
}

bool AtmosphereEffect::refreshLuts() {
    _luts.setInfo(_currentInfo, _lutSampler.get());
    _luts.refresh();
    return true;
}

void AtmosphereEffect::setSourceColorTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceColorTexture = texture;
    _currentInfo.hasSourceColor = texture != nullptr;
    if (_loadedInfo.hasSourceColor)
        _bindTextureIfLoaded(texture, COLOR_UNIT);
}

void AtmosphereEffect::setSourceDepthTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceDepthTexture = texture;
    _currentInfo.hasSourceDepth = texture != nullptr;
    if (_loadedInfo.hasSourceDepth)
        _bindTextureIfLoaded(texture, DEPTH_UNIT);
}

void AtmosphereEffect::setShadowSource(ovGraphics::Texture* texture, ovGraphics::Camera* camera) {
    _currentInfo.shadowTexture = texture;
    _currentInfo.shadowCamera = camera;
    _currentInfo.hasShadowTexture = texture != nullptr;
    _currentInfo.hasShadowCamera = camera != nullptr;
    if (!_loadedInfo.usesShadows())
        return;
    _bindTextureIfLoaded(texture, SHADOW_UNIT);
    _writePixelConstantsIfLoaded();
}

void AtmosphereEffect::setSunPosition(const ovMaths::Vector& direction) {
    _currentInfo.sunPosition = direction;
    _writePixelConstantsIfLoaded();
}

ovGraphics::Texture* AtmosphereEffect::getSourceColorTexture() const {
    return _currentInfo.sourceColorTexture.get();
}

ovGraphics::Texture* AtmosphereEffect::getSourceDepthTexture() const {
    return _currentInfo.sourceDepthTexture.get();
}

ovGraphics::Texture* AtmosphereEffect::getShadowTexture() const {
    return _currentInfo.shadowTexture.get();
}

ovGraphics::Camera* AtmosphereEffect::getShadowCamera() const {
    return _currentInfo.shadowCamera.get();
}

void AtmosphereEffect::_writePixelConstantsIfLoaded() const {
    if (ovGraphics::Shader* shader = _getLoadedShader())
        writePixelConstants(*shader, _currentInfo, _loadedInfo.usesShadows());
}

void AtmosphereEffect::_writeAirConstantsIfLoaded() const {
    if (ovGraphics::Shader* shader = _getLoadedShader())
        writeAirConstants(*shader, _currentInfo);
}

void AtmosphereEffect::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleAtmosphereText("AtmosphereEffect.pixel.ovsl", embedded::AtmosphereEffect_pixel);
    sources.setVertexMemory(atmosphereVertexText());
    sources.setPixelMemory(pixelText);
    sources.addDefineMacroPixel("RAYMARCH_STEPS", toUnsignedLiteral(_loadedInfo.raymarchSampleCount));
    const auto defineIf = [&](bool isSet, ovMemory::StringView define) {
        if (isSet)
            sources.addDefineMacroPixel(define, "");
    };
    defineIf(_loadedInfo.hasSourceColor, "USE_SOURCE_COLOR");
    defineIf(_loadedInfo.hasSourceDepth, "USE_SOURCE_DEPTH");
    if (_loadedInfo.usesShadows()) {
        sources.addDefineMacroPixel("USE_VISIBILITY_SHADOWS", "");
        addShadowMapDefines(sources, _loadedInfo.shadow, SHADOW_MAP_DEFINES::SIX_DECIMALS);
    }
    defineIf(_loadedInfo.onlyScatterOnObjects, "ONLY_SCATTER_ON_OBJECTS");
    defineIf(_loadedInfo.displaySun, "DISPLAY_SUN");
    defineIf(_loadedInfo.debugNumericalInstability, "DEBUG_NUMERICAL_INSTABILITY");
}

void AtmosphereEffect::_bindResources(ovGraphics::Shader& shader) {
    _luts.prepareTextures();
    _makeSamplers();
    shader.setHidden(true);
    shader.getProgram()->setHidden(true);
    writeCornerConstants(shader);
    writePixelConstants(shader, _loadedInfo, _loadedInfo.usesShadows());
    writeAirConstants(shader, _loadedInfo);
    const auto bind = [&](ovGraphics::Texture* texture, ovGraphics::Sampler& sampler, unsigned int unit) {
        shader.setTexture(texture, unit, 0);
        shader.setSampler(&sampler, unit, 0);
    };
    if (_loadedInfo.hasSourceColor)
        bind(getSourceColorTexture(), *_lutSampler, COLOR_UNIT);
    if (_loadedInfo.hasSourceDepth)
        bind(getSourceDepthTexture(), *_depthSampler, DEPTH_UNIT);
    bind(getSunTransmittanceLut(), *_lutSampler, SUN_TABLE_UNIT);
    bind(getMultiScatteringLut(), *_lutSampler, MULTI_TABLE_UNIT);
    if (_loadedInfo.usesShadows())
        bind(getShadowTexture(), *_shadowSampler, SHADOW_UNIT);
}

// Of this effect alone, and made anew by each load: the graphics system may be another one by then.
void AtmosphereEffect::_makeSamplers() {
    using ovGraphics::TEXTURE_ADDRESS;
    const auto make = [&](ovMemory::StringView name, TEXTURE_ADDRESS address) {
        auto sampler = ovGraphics::Sampler::create(_getGraphicsSystem());
        sampler->setName(name);
        sampler->setAddressU(address);
        sampler->setAddressV(address);
        return sampler;
    };
    _depthSampler = make("OV_ATMOSPHERE_DEPTH_SAMPLER", TEXTURE_ADDRESS::CLAMP);
    // A mix of an object's depth and the sky's is a place far away. Between texels of equal size the last bit
    // of a coordinate was enough to draw a black rim around objects.
    _depthSampler->setFilter(ovGraphics::FILTER::MIN_MAG_MIP_POINT);
    _depthSampler->load();
    _lutSampler = make("OV_ATMOSPHERE_LUT_SAMPLER", TEXTURE_ADDRESS::CLAMP);
    _lutSampler->setFilter(ovGraphics::FILTER::MIN_MAG_MIP_LINEAR);
    _lutSampler->load();
    _shadowSampler = nullptr;
    if (!_loadedInfo.usesShadows())
        return;
    _shadowSampler = make("OV_ATMOSPHERE_SHADOW_SAMPLER", TEXTURE_ADDRESS::BORDER);
    _shadowSampler->setFilter(ovGraphics::FILTER::COMPARISON_MIN_MAG_MIP_LINEAR);
    _shadowSampler->setBorderColor(1.0f, 1.0f, 1.0f, 1.0f);
    _shadowSampler->setComparison(ovGraphics::COMPARISON::LESS_EQUAL);
    _shadowSampler->load();
}

} // namespace ovVeldris
