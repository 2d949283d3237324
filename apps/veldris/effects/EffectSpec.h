// The text form of a chain of effects, as the command line takes it.
#pragma once

#include <ovVeldris/core/settings/SettingText.h>

namespace veldris {

using ovVeldris::SettingText;

/// One effect as written: `name` or `name:setting=value,setting=value`.
struct EffectSpec {
    ovMemory::String name;
    ovMemory::Buffer<SettingText> settings;
    bool operator==(const EffectSpec&) const = default;
};

/// Reads `effect;effect;...`, each `name[:setting=value[,setting=value...]]`. A comma starts a new setting
/// only when a `=` follows before the next comma, so vectors need no quotes:
/// `max-white=4,4,4,use-luminance=false`. Spaces around names and values are dropped.
/// @return false with one line in error that quotes the place; effects is then empty
bool parseEffectList(ovMemory::StringView text, ovMemory::Buffer<EffectSpec>& effects,
                     ovMemory::String& error);

/// The inverse of parseEffectList.
ovMemory::String toText(const EffectSpec& effect);

} // namespace veldris
