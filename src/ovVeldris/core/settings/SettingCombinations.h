// Every way in which the settings of a class can select the text of its shaders.
#pragma once

#include <ovVeldris/core/settings/SettingText.h>

namespace ovVeldris {

/// Beyond as many nobody reads a list, and each may be a program to compile.
inline constexpr std::size_t MAX_COMBINATIONS = 64;

/// Every combination of the settings that wait for load() and have finitely many values: flags (the default
/// first) and enumerations (in the order of their choices). The first such setting of the table varies
/// slowest. Where a setting means nothing beside the others (Setting::onlyWith), it is left out, so that no
/// two combinations differ in it alone.
///
/// A table of more than MAX_COMBINATIONS gives the defaults, and each other value alone beside them.
/// @return one empty combination for a table without such settings
OV_API ovMemory::Buffer<ovMemory::Buffer<SettingAssignment>> finiteCombinations(const SettingTable& settings);

} // namespace ovVeldris
