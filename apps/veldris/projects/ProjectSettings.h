// How a project is drawn: options of veldris render, kept beside it.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// An option of veldris render by its name without dashes, and its value as a text; "true" for a flag.
struct ProjectSetting {
    ovMemory::String name;
    ovMemory::String value;
    bool operator==(const ProjectSetting&) const = default;
};

/// Names of the options that a project keeps.
ovMemory::BufferView<const ovMemory::StringView> projectSettingNames();

/// A JSON object of the settings, each a text.
ovMemory::String writeSettings(const ovMemory::Buffer<ProjectSetting>& settings);

/// Reads such an object; values may be texts, numbers and bools.
/// @param problems gets a line for each member that is no setting: "LINE: ..."
ovMemory::Buffer<ProjectSetting> readSettings(ovMemory::StringView text,
                                              ovMemory::Buffer<ovMemory::String>& problems);

} // namespace veldris
