// A project with everything it needs in one folder.
#pragma once

#include <ovMemory/Result.h>
#include <veldris/projects/ProjectFiles.h>

namespace veldris {

/// Copies a project, and every file that it names, to another folder. Files inside the project's folder keep
/// their places; an environment from elsewhere is put beside the project, and the copy names it there.
/// @param folder is made when it is not there; files in it that are in the way are an error
/// @param copied gets the paths of the copies
/// @return a failure that names the file that is missing or in the way
ovMemory::Result packProject(const ProjectFiles& files, const ovMemory::String& folder,
                             ovMemory::Buffer<ovMemory::String>& copied);

} // namespace veldris
