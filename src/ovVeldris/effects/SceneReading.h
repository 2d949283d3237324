// What effects read of a scene.
#pragma once

#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// What whoever draws a scene can hand to an effect.
enum class SCENE_INPUT : unsigned int {
    DEPTH,        ///< a texture: what the camera's depth buffer holds
    LINEAR_DEPTH, ///< a flag: whether that is linear
    POSITIONS,    ///< a texture: view-space positions, z = 0 where nothing is
    NORMALS,      ///< a texture: view-space normals
    CAMERA,       ///< who sees the scene
    SHADOW_MAP,   ///< a texture: depth as the light sees the scene
    LIGHT_CAMERA, ///< who drew the shadow map
    TO_LIGHT      ///< a vector: the direction towards the light
};

inline constexpr ovMemory::EnumEntry<SCENE_INPUT> SCENE_INPUT_ENTRIES[] = {
    {SCENE_INPUT::DEPTH, "DEPTH"},
    {SCENE_INPUT::LINEAR_DEPTH, "LINEAR_DEPTH"},
    {SCENE_INPUT::POSITIONS, "POSITIONS"},
    {SCENE_INPUT::NORMALS, "NORMALS"},
    {SCENE_INPUT::CAMERA, "CAMERA"},
    {SCENE_INPUT::SHADOW_MAP, "SHADOW_MAP"},
    {SCENE_INPUT::LIGHT_CAMERA, "LIGHT_CAMERA"},
    {SCENE_INPUT::TO_LIGHT, "TO_LIGHT"},
};
constexpr ovMemory::EnumTable<SCENE_INPUT> enumTable(SCENE_INPUT) {
    return {"SCENE_INPUT", SCENE_INPUT_ENTRIES};
}

/// A setting that holds something of the scene.
struct SceneBinding {
    ovMemory::StringView setting;
    SCENE_INPUT input;
    /// Whether a chain's author may write the setting too, which then counts. Of others the scene alone
    /// knows.
    bool mayBeWritten = false;
};

/// One way in which a kind of effects reads a scene.
struct SceneReading {
    ovMemory::StringView name; ///< in lower case with dashes; of one kind all differ
    ovMemory::Buffer<SceneBinding> bindings;

    bool reads(SCENE_INPUT input) const {
        for (const SceneBinding& binding : bindings)
            if (binding.input == input)
                return true;
        return false;
    }
};

} // namespace ovVeldris
