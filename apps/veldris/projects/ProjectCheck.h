// What is wrong with a project.
#pragma once

#include <veldris/materials/DeclarationCheck.h>
#include <veldris/projects/ProjectFiles.h>

namespace veldris {

/// A problem of one of a project's files.
struct ProjectProblem {
    ovMemory::String file;
    DeclarationProblem problem;
};

/// Looks at every file, name, reference and setting of a project, without a device: what is only known when
/// meshes are loaded, such as an index of a vertex that is not there, is left to veldris render.
ovMemory::Buffer<ProjectProblem> checkProject(const ProjectFiles& files);

} // namespace veldris
