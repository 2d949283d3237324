// What a drawn scene hands to the effects that read it.
#pragma once

#include <veldris/effects/EffectPlan.h>

namespace veldris {

/// Borrowed; null is what no effect of the scene reads.
struct SceneResources {
    ovGraphics::Texture* depth = nullptr;
    ovGraphics::Texture* positions = nullptr;
    ovGraphics::Texture* normals = nullptr;
    ovGraphics::Texture* shadowMap = nullptr;
    ovGraphics::Camera* camera = nullptr;
    ovGraphics::Camera* lightCamera = nullptr;
    ovMaths::Vector toLight{0.0f, 1.0f, 0.0f};
};

/// Whether any of some effects reads something.
bool readAny(const ovMemory::Buffer<PlannedEffect>& effects, ovVeldris::SCENE_INPUT input);

/// What keeps effects from reading a scene as a camera sees it: a depth buffer is read as of a perspective
/// view.
/// @return one line, or nothing
ovMemory::String checkView(const ovMemory::Buffer<PlannedEffect>& effects, bool isOrthographic);

/// Gives an effect what it reads of a scene, but for what its author has written.
void bindScene(const PlannedEffect& planned, const SceneResources& scene, ovVeldris::Effect& effect);

} // namespace veldris
