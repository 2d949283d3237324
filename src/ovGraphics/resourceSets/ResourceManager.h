// Sets of resources as files.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/resourceSets/ResourceSet.h>
#include <ovMemory/Borrowed.h>

namespace ovGraphics {

class System;

/// Writes the resources of a graphics system to a file and reads them back: textures, samplers, meshes,
/// nodes, and queues with their entities. docs/projects.md has the format.
///
/// A set holds what its system's managers own, but for hidden resources; and what entities of their queues
/// draw although nobody manages it: meshes, nodes, and the textures of their shaders. Reading a set gives all
/// of it to the managers. Texels and vertices that have no file of their own, or one outside the set's
/// folder, are written to a file beside the set, so that a set never depends on other folders.
///
/// Nothing throws. Messages go to the system's log and into the results.
class OV_API ResourceManager : public ovMemory::Borrowable {
public:
    /// Made by System. @param system not owned, outlives this object
    explicit ResourceManager(System* system)
        : _system(system) {}

    /// That of the System singleton, which is created (not initialised) when missing.
    static ResourceManager* getInstance();

    /// Writes a set: the file of the query and, where there is content without a file, one named alike with
    /// ".data" added. Each is written as a whole or not at all. Saving what was loaded gives the same bytes.
    /// Render targets are kept by their settings alone.
    /// @return a failure when a file cannot be written; a warning that names what could not be kept: a mesh
    ///         whose arrays were dropped, texels that the device cannot read
    ovMemory::Result saveResourceSetDescFile(const ResourceSetSaveQuery& query) const;

    /// Reads a set, and is through when it returns. A resource of a name that exists already takes over what
    /// the entry says. An entry that is wrong is left out with one problem, and the others are taken. Paths
    /// that leave the set's folder are wrong.
    /// @return false after log lines when the file gave nothing: it cannot be read, or it is no set
    bool loadResourceSetDescFileSync(const ResourceSetLoadQuery& query, ResourceSetLoadResult& result) const;

    /// The same for a text. @param folder that its files are in @param name of it in messages
    bool loadResourceSetText(ovMemory::StringView text, ovMemory::StringView folder,
                             ovMemory::StringView name, bool loading, ResourceSetLoadResult& result) const;

private:
    System* _system;
};

} // namespace ovGraphics
