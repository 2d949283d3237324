// The settings of the air that a user may give.
#pragma once

#include <ovVeldris/core/settings/SettingText.h>

namespace veldris {

/// The program's own default of sun-illuminance-factor, the effect's being 5. One exposure serves skies and
/// models: a white surface that faces the sun of a clear noon is then as bright as in the light that models
/// have without a sky (DEFAULT_LIGHT_COLOR), 10 / pi * 0.9 = 2.9, for which DEFAULT_TONE_MAPPING was chosen.
inline constexpr float SKY_ILLUMINANCE = 10.0f;

/// The settings of AtmosphereEffect but those that the program gives itself: what it reads, the sun's place
/// and how shadows are read. The default of sun-illuminance-factor is SKY_ILLUMINANCE.
const ovVeldris::SettingTable& airSettings();

/// Reads `name=value,name=value`; commas within a value need no quotes. Empty text: no settings.
/// @return false with one line in error
bool planAir(ovMemory::StringView text, ovMemory::Buffer<ovVeldris::SettingAssignment>& air,
             ovMemory::String& error);

/// A page of text: every setting with its range and default.
ovMemory::String airHelp();

} // namespace veldris
