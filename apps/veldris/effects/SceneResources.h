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

/// Gives an effect what it reads of a scene, but for what its author has written.
void bindScene(const PlannedEffect& planned, const SceneResources& scene, ovVeldris::Effect& effect);

} // namespace veldris
