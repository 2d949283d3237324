// The atmosphere as the environment of a scene.
#pragma once

#include <veldris/effects/EffectPlan.h>
#include <veldris/scene/EnvironmentLight.h>
#include <veldris/sky/SkyPicture.h>
#include <veldris/sky/SkyPlace.h>

namespace veldris {

/// An atmosphere as a user gives it.
struct SkyChoice {
    SkyPlace sun;
    ovMemory::Buffer<ovVeldris::SettingAssignment> air;
};

/// Whether the name of an environment means the atmosphere: `atmosphere`, alone or before a colon.
bool isSkyChoice(ovMemory::StringView text);

/// Reads `atmosphere:sun=ELEVATION,AZIMUTH[,SETTING=VALUE...]`, settings as of planAir().
/// @return false with one line in error
bool readSkyChoice(ovMemory::StringView text, SkyChoice& choice, ovMemory::String& error);

/// The effect that lays the air over a scene and draws the sky behind it, for SceneSettings::effects.
PlannedEffect planAirOverScene(const SkyChoice& choice);

/// What the atmosphere gives a scene.
class SkyEnvironment {
public:
    /// Draws the sky and filters it. @param eyeHeight metres, of the scene's camera
    /// @param warning gets one line when what was filtered cannot be kept @param progress of the filtering
    /// @return null with one line in error
    static ovMemory::UniquePtr<SkyEnvironment> create(Session& session, const SkyChoice& choice,
                                                      float eyeHeight, ovMemory::String& warning,
                                                      ovMemory::String& error,
                                                      const ovCommon::WorkProgress& progress = {});

    /// The light of the sky and the ground, without the sun's disc.
    const EnvironmentLight& getLight() const { return *_light; }
    /// What stands behind the scene before the air is laid over: the ground, as a panorama.
    ovGraphics::Texture* getBehind() const { return _picture->getGround(); }
    /// Where the sun's light shines to, length 1.
    const ovMaths::Vector& getSunDirection() const { return _sunDirection; }
    /// The sun seen through the air from the eye, as materials take light: the radiance of a matte white that
    /// faces it, irradiance / pi. Black where the ground hides the sun.
    const ovMaths::Vector& getSunColor() const { return _sunColor; }

private:
    SkyEnvironment() = default;

    ovMemory::UniquePtr<SkyPicture> _picture;
    ovMemory::UniquePtr<EnvironmentLight> _light;
    ovMaths::Vector _sunDirection;
    ovMaths::Vector _sunColor;
};

} // namespace veldris
