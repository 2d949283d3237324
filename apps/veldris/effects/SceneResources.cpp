#include <veldris/effects/SceneResources.h>

#include <algorithm>
#include <fmt/format.h>

namespace veldris {

namespace {

using ovVeldris::SCENE_INPUT;
using ovVeldris::SettingValue;

SettingValue valueOf(SCENE_INPUT input, const SceneResources& scene) {
    switch (input) {
    case SCENE_INPUT::DEPTH:
        return scene.depth;
    case SCENE_INPUT::LINEAR_DEPTH:
        return false; // what a depth buffer holds never is
    case SCENE_INPUT::POSITIONS:
        return scene.positions;
    case SCENE_INPUT::NORMALS:
        return scene.normals;
    case SCENE_INPUT::CAMERA:
        return scene.camera;
    case SCENE_INPUT::SHADOW_MAP:
        return scene.shadowMap;
    case SCENE_INPUT::LIGHT_CAMERA:
        return scene.lightCamera;
    default:
        return scene.toLight;
    }
}

bool isWritten(const PlannedEffect& planned, ovMemory::StringView setting) {
    return std::ranges::find(planned.settings, setting, &ovVeldris::SettingAssignment::name) !=
           planned.settings.end();
}

} // namespace

bool readAny(const ovMemory::Buffer<PlannedEffect>& effects, SCENE_INPUT input) {
    return std::ranges::any_of(effects, [input](const PlannedEffect& effect) {
        return effect.reading && effect.reading->reads(input);
    });
}

ovMemory::String checkView(const ovMemory::Buffer<PlannedEffect>& effects, bool isOrthographic) {
    for (const PlannedEffect& effect : effects) {
        if (!isOrthographic || !effect.reading->reads(SCENE_INPUT::DEPTH))
            continue;
        const auto other =
            std::ranges::find_if(effect.kind->sceneReadings, [](const ovVeldris::SceneReading& reading) {
                return !reading.reads(SCENE_INPUT::DEPTH);
            });
        return fmt::format(
            "'{}' reads the depth of a perspective view, and the camera's is orthographic; take "
            "another camera{}.",
            effect.kind->getName(),
            other == effect.kind->sceneReadings.end() ? "" : fmt::format(", or reads={}", other->name));
    }
    return {};
}

void bindScene(const PlannedEffect& planned, const SceneResources& scene, ovVeldris::Effect& effect) {
    for (const ovVeldris::SceneBinding& binding : planned.reading->bindings)
        if (!binding.mayBeWritten || !isWritten(planned, binding.setting))
            effect.setSetting(binding.setting, valueOf(binding.input, scene));
}

} // namespace veldris
