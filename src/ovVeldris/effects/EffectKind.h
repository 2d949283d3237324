// The kinds of effects that there are: one table for whoever creates, lists or checks effects.
#pragma once

#include <optional>
#include <ovVeldris/core/PictureContent.h>
#include <ovVeldris/core/settings/SettingText.h>
#include <ovVeldris/effects/Effect.h>
#include <ovVeldris/effects/SceneReading.h>

namespace ovGraphics {
class BlendState;
}

namespace ovVeldris {

class System;

/// Settings that show what a kind does, for galleries and help.
struct EffectExample {
    ovMemory::StringView name;     ///< of a file, without extension
    ovMemory::StringView settings; ///< `name=value,name=value`, as command lines take them; may be empty
};

/// A row of the table of kinds.
struct OV_API EffectKind {
    EFFECT_TYPE type = EFFECT_TYPE::UNKNOWN;
    ovMemory::StringView summary;         ///< what it does, without a full stop
    std::optional<PICTURE_CONTENT> takes; ///< nothing: any
    std::optional<PICTURE_CONTENT> gives; ///< nothing: what it took
    /// A new, unloaded effect. @param system not owned; null means the System singleton
    ovMemory::UniquePtr<Effect> (*create)(System* system) = nullptr;
    const SettingTable& (*settings)() = nullptr;
    ovMemory::Buffer<EffectExample> examples; ///< of a picture of scene light
    /// For kinds that may draw over their picture in the target instead of reading it: prepares the state
    /// with which an effect of the kind does. @return false when the effect, as it is set, reads its picture.
    /// Null: the kind always reads it
    bool (*prepareBlending)(const Effect& effect, ovGraphics::BlendState& state) = nullptr;
    /// The setting through which a chain of effects hands on its picture; empty: the kind reads none.
    ovMemory::StringView pictureSetting = "source-texture";
    /// The ways in which the kind reads a scene, the usual one first; empty: it needs a picture alone.
    ovMemory::Buffer<SceneReading> sceneReadings = {};
    /// What a chain sets where its author does not: the table's defaults are those of the bare effect.
    ovMemory::Buffer<SettingAssignment> chainSettings = {};

    bool readsScene() const { return !sceneReadings.empty(); }
    /// The kind's text in lower case with dashes: "tone-mapping".
    ovMemory::String getName() const;
};

/// All kinds, in the order that lists show them.
OV_API const ovMemory::Buffer<EffectKind>& effectKinds();

/// The row of a type, or null.
OV_API const EffectKind* findEffectKind(EFFECT_TYPE type);
/// The row of a name. @return null with one line in error that lists the names
OV_API const EffectKind* findEffectKind(ovMemory::StringView name, ovMemory::String& error);

} // namespace ovVeldris
