// The effects that the command line offers, with their settings.
#pragma once

#include <functional>
#include <ovVeldris/effects/Effect.h>
#include <veldris/effects/PictureContent.h>
#include <veldris/effects/SettingValues.h>

namespace ovGraphics {
class Texture;
}

namespace veldris {

/// One kind of effect.
struct EffectDescription {
    ovMemory::StringView name; ///< the kind's text in lower case with dashes
    ovVeldris::EFFECT_TYPE type;
    ovMemory::StringView summary;
    std::optional<PICTURE_CONTENT> takes; ///< nothing: any
    std::optional<PICTURE_CONTENT> gives; ///< nothing: what it took
    ovMemory::Buffer<SettingDescription> settings;
    /// Settings, as in EffectSpec, under which the effect generates each of its programs once.
    ovMemory::Buffer<ovMemory::StringView> programVariants;
    /// Checks what belongs together and hands the values to an effect of this type.
    /// @return one line that says what is wrong, or an empty one
    std::function<ovMemory::String(ovVeldris::Effect&, const SettingValues&)> apply;
    /// Hands a picture to an effect that these settings were applied to. Before load().
    std::function<void(ovVeldris::Effect&, ovGraphics::Texture*, const SettingValues&)> setSource;
};

/// All kinds, in the order that lists show them.
const ovMemory::Buffer<EffectDescription>& effectCatalog();

/// The kind of that name. @return null and one line in error that lists the names
const EffectDescription* findEffect(ovMemory::StringView name, ovMemory::String& error);

/// A page of text: every effect with its settings, their values and defaults.
ovMemory::String effectHelp();

} // namespace veldris
