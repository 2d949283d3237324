// How a scene is drawn, as the user says it.
#pragma once

#include <optional>
#include <veldris/Session.h>
#include <veldris/bake/EnvironmentInput.h>
#include <veldris/effects/EffectPlan.h>
#include <veldris/scene/SceneCamera.h>
#include <veldris/scene/ScenePicture.h>
#include <veldris/sky/SkyEnvironment.h>

namespace CLI {
class App;
}

namespace veldris {

inline constexpr const char* BUILT_IN_SKY = "sky";
inline constexpr const char* NO_ENVIRONMENT = "none";

/// The texts of the options, and where pictures come from and go to.
struct RenderOptions {
    ovMemory::String model;
    ovMemory::String project;
    ovMemory::String materials;
    ovMemory::String output;
    ovMemory::String camera;
    ovMemory::String light;
    ovMemory::String lightColor;
    ovMemory::String background;
    ovMemory::String environment = BUILT_IN_SKY;
    float environmentRotation = 0.0f; ///< degrees
    EnvironmentReading reading = {};
    ovMemory::String size = "1280x720";
    ovMemory::String effects; ///< empty: DEFAULT_TONE_MAPPING, or none for scene light
    unsigned int samples = 4;
    bool shadows = false;
    int ground = 0; ///< above 0: yes; below: no; 0: where the built-in sky is to be seen
    DrawingOptions drawing;
};

/// What the options say, checked before anything is read.
struct RenderPlan {
    SceneSettings scene;
    CameraChoice camera;
    ChainPlan chain;
    std::optional<ovMaths::Vector> background; ///< to be laid behind the picture
    std::optional<SkyChoice> sky;              ///< the environment, where it is the atmosphere
};

/// Adds the options that say how a scene is drawn: those that a project may keep.
void addSceneOptions(CLI::App& command, RenderOptions& options);

/// @return false with one line in error when an option is wrong
bool makePlan(const RenderOptions& options, RenderPlan& plan, ovMemory::String& error);

/// Whether a picture could be drawn with the options, before its file is known: one of display colours, or
/// one of scene light. @return false with one line in error
bool checkSceneOptions(RenderOptions options, ovMemory::String& error);

} // namespace veldris
