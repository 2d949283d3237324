// New projects.
#pragma once

#include <ovMemory/Result.h>
#include <veldris/projects/ProjectFiles.h>
#include <veldris/projects/ProjectSettings.h>

namespace ovVeldris {
class Model;
}

namespace veldris {

class Session;

/// Refuses to write over a project, and makes its folder.
ovMemory::Result prepareProject(const ProjectFiles& files);

/// Writes an empty project: no device is needed.
ovMemory::Result writeEmptyProject(const ProjectFiles& files);

/// Writes a project of a model, whose materials it loads: its parts in the queues "solid" and "blended".
/// @return with what the log says when something could not be written
ovMemory::Result writeModelProject(Session& session, ovVeldris::Model& model, const ProjectFiles& files);

/// Writes the file that switches the scripts on, beside the scripts.
ovMemory::Result writeScriptsSwitch(const ProjectFiles& files);

/// Writes the settings, if there are any. An environment from elsewhere is copied beside the project, and
/// named there.
ovMemory::Result writeProjectSettings(const ProjectFiles& files, ovMemory::Buffer<ProjectSetting> settings);

} // namespace veldris
