// Settings of projects as options of commands.
#pragma once

#include <veldris/projects/ProjectSettings.h>

namespace CLI {
class App;
}

namespace veldris {

/// Those of a command's options that its user gave.
ovMemory::Buffer<ProjectSetting> givenSettings(const CLI::App& command);

/// Gives a command the settings for the options that its user left out.
/// @param folder that an environment is relative to @return a line for each that the option does not take
ovMemory::Buffer<ovMemory::String> applySettings(const ovMemory::Buffer<ProjectSetting>& settings,
                                                 const ovMemory::String& folder, CLI::App& command);

/// Whether an environment is a file and none of the program's own skies.
bool isEnvironmentFile(ovMemory::StringView environment);

} // namespace veldris
