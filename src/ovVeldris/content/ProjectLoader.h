// Whole projects as files.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/resourceSets/ResourceSet.h>
#include <ovMemory/Memory.h>
#include <ovScripts/ProjectLoader.h>

namespace ovVeldris {

class Material;
class ResourceDeclAugmentCallback;
class System;

/// What a project is loaded with. Paths of the two queries inside are replaced by the project's.
struct ProjectLoadQuery {
    /// From the working folder of ovResources::ResourceManager. "x.ovs" is the name that serves both loading
    /// and saving, see ProjectLoader.
    ovMemory::String _path;
    /// Sees every material with its entry before it is loaded. Not owned; null: nobody.
    ResourceDeclAugmentCallback* _callback = nullptr;
    /// Kept for its callers; nothing asks for it.
    bool _flag = true;
    ovGraphics::ResourceSetLoadQuery _resourceSetQuery;
    ovScripts::ProjectLoadQuery _scriptsQuery;
};

/// What a project is saved with. Paths of the two queries inside are replaced by the project's.
struct ProjectSaveQuery {
    /// From the working folder of ovResources::ResourceManager.
    ovMemory::String _path;
    /// Sees every material with its entry, to which it may add. Not owned; null: nobody.
    ResourceDeclAugmentCallback* _callback = nullptr;
    /// Kept for its callers; nothing asks for it.
    bool _flag = true;
    ovGraphics::ResourceSetSaveQuery _resourceSetQuery;
    ovScripts::ProjectSaveQuery _scriptsQuery;
};

/// What a project gave. Parts that have no file are empty.
struct ProjectLoadResult {
    ovMemory::Buffer<Material*> _materials; ///< in the order of the file; the material manager's
    ovGraphics::ResourceSetLoadResult _resourceSet;
    ovMemory::Buffer<ovScripts::Script*> _scripts; ///< the script manager's
};

/// Writes and reads a project: materials, resources and scripts, each in a file of its own. With the base B,
/// the project's path cut before its first dot (wherever that stands: "./x" has the empty base):
///
/// | File | Read | Written |
/// |---|---|---|
/// | B_materials.ovm | yes | yes |
/// | B.ovs | yes | only when the project's path is B.ovs: a set is saved under the path as it is given |
/// | B_scripts.ovscripts | when there is a B_scripts.ovScripts, spelt with a large S | yes |
///
/// Missing files are no errors. docs/projects.md has the formats. A System owns one, see
/// System::getProjectLoader().
class OV_API ProjectLoader {
public:
    /// @param system not owned, outlives this object
    explicit ProjectLoader(System* system)
        : _system(system) {}

    System* getSystem() const { return _system; }

    /// The base of a project's files.
    static ovMemory::StringView getBase(ovMemory::StringView path) { return path.substr(0, path.find('.')); }

    /// Writes all materials of the system's manager, the resources of its graphics system, and the scripts.
    /// What cannot be written is told by the log alone. Without a callback, settings that the library's
    /// format of materials lacks are lost: MaterialSettingsWriter keeps them.
    void save(const ProjectSaveQuery& query) const;

    /// Reads a project. Materials are loaded, though their textures come after them; then each takes the
    /// samplers of its textures, and the entities of the set take the shaders of their materials. Entries of
    /// materials that cannot be used are skipped without a word.
    ProjectLoadResult load(const ProjectLoadQuery& query) const;

private:
    void _saveMaterials(const ProjectSaveQuery& query) const;
    void _loadMaterials(const ProjectLoadQuery& query, ProjectLoadResult& result) const;
    void _loadResourceSet(const ProjectLoadQuery& query, ProjectLoadResult& result) const;
    void _loadScripts(const ProjectLoadQuery& query, ProjectLoadResult& result) const;
    void _connect(const ProjectLoadResult& result) const;

    System* _system;
};

} // namespace ovVeldris
