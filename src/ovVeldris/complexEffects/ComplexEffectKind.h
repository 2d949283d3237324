// The kinds of complex effects that there are: one table for whoever creates, lists or checks them.
#pragma once

#include <ovVeldris/complexEffects/ComplexEffect.h>

namespace ovVeldris {

class System;

/// A row of the table of kinds.
struct OV_API ComplexEffectKind {
    /// The setting through which a chain of effects hands on its picture.
    static constexpr ovMemory::StringView PICTURE_SETTING = "source-texture";
    /// The setting of the picture's depth, of kinds that read it.
    static constexpr ovMemory::StringView DEPTH_SETTING = "source-depth";

    COMPLEX_EFFECT_TYPE type;
    ovMemory::StringView summary; ///< what it does, without a full stop
    /// A new, unloaded effect. @param system not owned; null means the System singleton
    ovMemory::UniquePtr<ComplexEffect> (*create)(System* system);
    const SettingTable& (*settings)();
    /// What an effect of the kind draws into, or null; the effect owns it.
    ovGraphics::Texture* (*getOutput)(const ComplexEffect& effect);

    /// Whether the kind reads the depth of its picture, by the camera that saw it.
    bool readsDepth() const { return settings().find(DEPTH_SETTING) != nullptr; }
    /// The kind's text in lower case: "blur".
    ovMemory::String getName() const;
};

/// All kinds, in the order of their types.
OV_API const ovMemory::Buffer<ComplexEffectKind>& complexEffectKinds();

/// The row of a type, or null.
OV_API const ComplexEffectKind* findComplexEffectKind(COMPLEX_EFFECT_TYPE type);

} // namespace ovVeldris
