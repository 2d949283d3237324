// What saving and loading of resource sets is asked for, and gives.
#pragma once

#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovGraphics {

class Entity;
class Mesh;
class Node;
class RenderQueue;
class Sampler;
class Texture;

/// Which file a set is read from.
class ResourceSetLoadQuery {
public:
    /// From the working folder of ovResources::ResourceManager, or absolute.
    void setPath(ovMemory::StringView path) { _path = path; }
    const ovMemory::String& getPath() const { return _path; }
    /// Whether resources that were loaded when the set was saved are loaded. Without, a set can be read on a
    /// system that has no device. Default true.
    void setLoading(bool loading) { _loading = loading; }
    bool getLoading() const { return _loading; }

private:
    ovMemory::String _path;
    bool _loading = true;
};

/// Which file a set is written to.
class ResourceSetSaveQuery {
public:
    /// From the working folder of ovResources::ResourceManager, or absolute.
    void setPath(ovMemory::StringView path) { _path = path; }
    const ovMemory::String& getPath() const { return _path; }

private:
    ovMemory::String _path;
};

/// An entity of a set that waits for its shader: the system has none of that name, or it belongs to a library
/// above, as the shaders of materials do.
struct ResourceSetEntity {
    Entity* entity;          ///< of a queue of the set
    ovMemory::String shader; ///< name
};

/// Something that is wrong with a set.
struct ResourceSetProblem {
    unsigned int line = 0;    ///< of the file, from 1; 0: the file as a whole
    ovMemory::String message; ///< one line
};

/// What a set gave. One made by default is empty. Everything belongs to its manager.
struct ResourceSetLoadResult {
    ovMemory::Buffer<Texture*> _textures;
    ovMemory::Buffer<Sampler*> _samplers;
    ovMemory::Buffer<Mesh*> _meshes;
    ovMemory::Buffer<Node*> _nodes;
    ovMemory::Buffer<RenderQueue*> _queues;
    ovMemory::Buffer<ResourceSetEntity> _entities;
    /// Of the entries that could not be used, in the order met.
    ovMemory::Buffer<ResourceSetProblem> _problems;
    /// DONE; PARTLY_DONE when entries are missing or wrong; FAILED when the file gave nothing.
    ovMemory::RESULT_STATUS _status = ovMemory::RESULT_STATUS::DONE;
};

} // namespace ovGraphics
