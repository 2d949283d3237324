// The kinds of effects that there are: one table for whoever creates, lists or checks effects.
#pragma once

#include <optional>
#include <ovVeldris/core/PictureContent.h>
#include <ovVeldris/effects/Effect.h>

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
    /// The setting through which a chain of effects hands on its picture.
    static constexpr ovMemory::StringView PICTURE_SETTING = "source-texture";

    EFFECT_TYPE type;
    ovMemory::StringView summary;         ///< what it does, without a full stop
    std::optional<PICTURE_CONTENT> takes; ///< nothing: any
    std::optional<PICTURE_CONTENT> gives; ///< nothing: what it took
    /// A new, unloaded effect. @param system not owned; null means the System singleton
    ovMemory::UniquePtr<Effect> (*create)(System* system);
    const SettingTable& (*settings)();
    ovMemory::Buffer<EffectExample> examples; ///< of a picture of scene light
    /// For kinds that may draw over their picture in the target instead of reading it: prepares the state
    /// with which an effect of the kind does. @return false when the effect, as it is set, reads its picture.
    /// Null: the kind always reads it
    bool (*prepareBlending)(const Effect& effect, ovGraphics::BlendState& state);

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
