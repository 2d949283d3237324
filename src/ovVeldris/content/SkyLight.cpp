#include <ovVeldris/content/SkyLight.h>

#include <cmath>
#include <numbers>
#include <ovGraphics/Managers.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/Model.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <ovVeldris/effects/atmosphere/SunLight.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/OutputLoaded.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace ovVeldris {

using ovGraphics::Texture;
using ovMaths::Vector;

namespace {

constexpr unsigned int SMALLEST_SIDE = 4; // of what the filter makes
constexpr auto SKY_FORMAT = ovGraphics::FORMAT::R32G32B32A32_FLOAT;
constexpr double AT_GROUND = 0.0; // metres
constexpr const char* LOG_TELLS = "the log says why.";

/// An effect of the same air that draws the sky alone. It is another one because what an atmosphere reads and
/// whether it has a disc is chosen at load(), and the given one belongs to somebody.
ovMemory::UniquePtr<AtmosphereEffect> makeSky(System& system, const AtmosphereEffect& air) {
    auto sky = AtmosphereEffect::create(&system);
    for (const Setting& setting : air.getSettings())
        setting.set(*sky, setting.get(air));
    sky->setSourceColorTexture(nullptr);
    sky->setSourceDepthTexture(nullptr);
    sky->setShadowSource(nullptr, nullptr);
    sky->setOnlyScatterOnObjects(false);
    sky->setDisplaySun(false);
    sky->setName("sky light");
    return sky;
}

/// Degrees above the horizon. @param direction of any length
double elevationOf(const Vector& direction) {
    const double level = std::hypot(static_cast<double>(direction.x), static_cast<double>(direction.z));
    return std::atan2(static_cast<double>(direction.y), level) * 180.0 / std::numbers::pi;
}

} // namespace

SkyLight::SkyLight(System* system, ovMemory::StringView name)
    : _system(system)
    , _name(name) {}

SkyLight::~SkyLight() = default;

ovMemory::Result SkyLight::draw(const AtmosphereEffect& air, unsigned int side) {
    ovMemory::Result result = _drawCubes(air, side);
    if (!result) {
        result.error = "Could not draw the sky '" + _name + "': " + result.error;
        return result;
    }
    _sunDirection = -air.getSunPosition();
    _sunColor = sunIrradiance(air, AT_GROUND, elevationOf(air.getSunPosition())) / std::numbers::pi_v<float>;
    return result;
}

ovMemory::Result SkyLight::_drawCubes(const AtmosphereEffect& air, unsigned int side) {
    ovGraphics::System* graphics = graphicsSystemOf(_system.get());
    if (!graphics || !_system->getEnvironmentRenderer())
        return ovMemory::failed("the system is gone or was shut down; initialise one before.");
    if (side < SMALLEST_SIDE)
        return ovMemory::failed("a side of " + std::to_string(side) + " texels is too small; give " +
                                std::to_string(SMALLEST_SIDE) + " or more.");
    const auto effect = makeSky(*_system, air);
    if (!effect->load())
        return ovMemory::failed(ovMemory::String("the atmosphere cannot be loaded; ") + LOG_TELLS);
    ovGraphics::TextureManager& textures = *graphics->getTextureManager();
    _sky = textures.createOrRetrieve(_name);
    _prefiltered = textures.createOrRetrieve(_name + " prefiltered");
    _irradiance = textures.createOrRetrieve(_name + " irradiance");
    EnvironmentRenderer& renderer = *_system->getEnvironmentRenderer();
    PbsEnvironmentMapFilter& filter = *_system->getPbsEnvironmentMapFilter();
    Texture* const sky = _sky.get();
    Texture* const prefiltered = _prefiltered.get();
    Texture* const irradiance = _irradiance.get();
    const bool drawn =
        loadsOutput(*sky, [&] { renderer.renderCubemap(sky, effect->getShader(), side, SKY_FORMAT); }) &&
        loadsOutput(*prefiltered, [&] { filter.requestEnvironmentMapFiltering(sky, prefiltered, side); }) &&
        loadsOutput(*irradiance, [&] { filter.requestIrradianceComputing(sky, irradiance); });
    return drawn ? ovMemory::Result() : ovMemory::failed(LOG_TELLS);
}

void SkyLight::lightMaterial(PbsMaterial& material) const {
    constexpr bool IS_PREFILTERED = true;
    material.setEnvironmentTexture(_prefiltered.get(), THREE_CHANNEL_PACK::RGB, IS_PREFILTERED);
    material.setIrradianceTexture(_irradiance.get(), THREE_CHANNEL_PACK::RGB);
    material.setCombineLightAndEnvironment(true);
    material.setLightDirection(_sunDirection);
    material.setLightColor(_sunColor);
}

void SkyLight::lightModel(const Model& model) const {
    for (const ModelMaterial& own : model.getMaterials())
        if (own.material)
            lightMaterial(*own.material);
}

} // namespace ovVeldris
