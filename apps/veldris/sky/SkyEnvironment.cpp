#include <veldris/sky/SkyEnvironment.h>

#include <algorithm>
#include <numbers>
#include <ovVeldris/effects/atmosphere/SunLight.h>
#include <veldris/Session.h>
#include <veldris/effects/EffectSpec.h>
#include <veldris/sky/AirSettings.h>

namespace veldris {

using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView NAME = "atmosphere";
constexpr StringView SUN = "sun";
constexpr unsigned int PANORAMA_HEIGHT = 256; // rows; a sky without a disc varies slowly
constexpr unsigned int PANORAMA_SAMPLES = 4;

} // namespace

bool isSkyChoice(StringView text) {
    return text.starts_with(NAME) && (text.size() == NAME.size() || text[NAME.size()] == ':');
}

bool readSkyChoice(StringView text, SkyChoice& choice, String& error) {
    ovMemory::Buffer<EffectSpec> specs;
    if (!parseEffectList(text, specs, error))
        return false;
    auto& settings = specs.front().settings;
    const auto sun = std::ranges::find(settings, SUN, &ovVeldris::SettingText::name);
    if (specs.size() != 1 || sun == settings.end()) {
        error = "the environment '" + String(text) +
                "' is not atmosphere:sun=ELEVATION,AZIMUTH, with settings of the air behind further commas.";
        return false;
    }
    if (!readSkyPlace("the sun", sun->value, choice.sun, error))
        return false;
    settings.erase(sun);
    error = parseSettings(airSettings(), settings, nullptr, choice.air).error;
    if (error.empty())
        return true;
    error = "the environment atmosphere: " + error;
    return false;
}

PlannedEffect planAirOverScene(const SkyChoice& choice) {
    PlannedEffect planned;
    planned.kind = ovVeldris::findEffectKind(ovVeldris::EFFECT_TYPE::ATMOSPHERE);
    planned.text = NAME;
    planned.reading = &planned.kind->sceneReadings.front();
    planned.settings = {{"sun-illuminance-factor", SKY_ILLUMINANCE},
                        {"sun-position", directionOf(choice.sun)}};
    planned.settings.insert(planned.settings.end(), choice.air.begin(), choice.air.end());
    return planned;
}

ovMemory::UniquePtr<SkyEnvironment> SkyEnvironment::create(Session& session, const SkyChoice& choice,
                                                           float eyeHeight, String& warning, String& error,
                                                           const ovCommon::WorkProgress& progress) {
    ovMemory::UniquePtr<SkyEnvironment> environment(new SkyEnvironment);
    const ovMaths::Vector towardsSun = directionOf(choice.sun);
    environment->_picture = SkyPicture::create(session, choice.air, eyeHeight, error);
    if (!environment->_picture || !environment->_picture->setSun(towardsSun, error))
        return nullptr;
    const ovImages::Image panorama = environment->_picture->drawPanorama(
        PANORAMA_HEIGHT, PANORAMA_SAMPLES, SkyPicture::SUN::WITHOUT_DISC, error);
    if (panorama.isEmpty())
        return nullptr;
    environment->_light = EnvironmentLight::create(session, panorama.view(), warning, error, progress);
    environment->_sunDirection = -towardsSun;
    environment->_sunColor =
        sunIrradiance(environment->_picture->getAir(), static_cast<double>(eyeHeight), choice.sun.elevation) /
        std::numbers::pi_v<float>;
    return environment->_light ? std::move(environment) : nullptr;
}

} // namespace veldris
