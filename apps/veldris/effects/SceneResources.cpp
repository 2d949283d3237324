#include <veldris/effects/SceneResources.h>

#include <algorithm>

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

void bindScene(const PlannedEffect& planned, const SceneResources& scene, ovVeldris::Effect& effect) {
    for (const ovVeldris::SceneBinding& binding : planned.reading->bindings)
        if (!binding.mayBeWritten || !isWritten(planned, binding.setting))
            effect.setSetting(binding.setting, valueOf(binding.input, scene));
}

} // namespace veldris
