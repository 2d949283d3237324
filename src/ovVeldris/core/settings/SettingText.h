// Settings and their values as text.
#pragma once

#include <ovVeldris/core/settings/SettingTable.h>

namespace ovGraphics {
class System;
}

namespace ovVeldris {

/// A value as text: "true", "3", "0.05" (the shortest that reads back the same), "2,2,2", a matrix row by
/// row, a choice, a text, the name of a resource or "none" for null.
OV_API ovMemory::String toText(const Setting& setting, const SettingValue& value);

/// Reads a value from text: flags as true, false, 1 or 0; numbers with a point, whatever the locale, with
/// optional spaces around; enumerations by a choice; textures, samplers, cameras and nodes by the name under
/// which a manager of the graphics system knows them, or "none".
/// @param resources looks names up; null: settings of resources take none
/// @return a failure that says what the setting, its place, takes; the value is then unchanged
OV_API ovMemory::Result parseSettingValue(const Setting& setting, ovMemory::StringView text,
                                          const ovGraphics::System* resources, SettingValue& value);

/// What a setting takes, in words: "a number from 1 to 179 degrees", "one of flat, cube".
OV_API ovMemory::String expectedText(const Setting& setting);
/// The range in words, with the unit: "above 0, 1 at most"; empty for all numbers.
OV_API ovMemory::String rangeText(const Setting& setting);

/// One line about a value that a setting does not take.
OV_API ovMemory::String valueProblem(const Setting& setting, ovMemory::StringView value);

/// The row of a name. @return null with a failure in result that lists the names
OV_API const Setting* findSetting(const SettingTable& settings, ovMemory::StringView name,
                                  ovMemory::Result& result);

/// A setting as written, for example on a command line: `name=value`.
struct SettingText {
    ovMemory::String name;
    ovMemory::String value;
    bool operator==(const SettingText&) const = default;
};

/// A checked value for a setting of that name.
struct SettingAssignment {
    ovMemory::StringView name; ///< of the table's row
    SettingValue value;
};

/// Reads settings that are given together. A name may come once, and a setting that means something beside
/// another one only (Setting::onlyWith) is refused beside another value of that, which is its default when it
/// is not given.
/// @param resources as of parseSettingValue()
/// @return a failure whose place is the first setting that is wrong
OV_API ovMemory::Result parseSettings(const SettingTable& settings,
                                      ovMemory::BufferView<const SettingText> texts,
                                      const ovGraphics::System* resources,
                                      ovMemory::Buffer<SettingAssignment>& assignments);

} // namespace ovVeldris
