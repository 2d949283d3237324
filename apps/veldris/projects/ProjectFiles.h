// The files of a project, as the library names them.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// The files of a project NAME.ovs, which lie in one folder. Nothing is said about which of them are there.
struct ProjectFiles {
    ovMemory::String folder;    ///< as given; "." for the current one
    ovMemory::String name;      ///< NAME.ovs, as the library is asked for from its working folder
    ovMemory::String set;       ///< NAME.ovs: textures, meshes, ...
    ovMemory::String data;      ///< NAME.ovs.data: texels and vertices
    ovMemory::String materials; ///< NAME_materials.ovm
    ovMemory::String scripts;   ///< NAME_scripts.ovscripts
    ovMemory::String
        scriptsSwitch;         ///< NAME_scripts.ovScripts, without which the library does not see the scripts
    ovMemory::String settings; ///< NAME_render.json: how the program draws it

    /// @param path of the .ovs file
    /// @return false with one line in error when the library would look for the set elsewhere than it writes
    /// it
    static bool find(ovMemory::StringView path, ProjectFiles& files, ovMemory::String& error);

    /// All of them that exist.
    ovMemory::Buffer<ovMemory::String> listExisting() const;
};

/// Lets the library work in the folder of a project, as long as this object lives.
class ProjectFolder {
public:
    explicit ProjectFolder(const ProjectFiles& files);
    ~ProjectFolder();
    ProjectFolder(const ProjectFolder&) = delete;
    ProjectFolder& operator=(const ProjectFolder&) = delete;

private:
    ovMemory::String _before;
};

} // namespace veldris
