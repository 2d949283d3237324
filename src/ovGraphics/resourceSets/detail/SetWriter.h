// Writes a set.
#pragma once

#include <ovGraphics/resourceSets/detail/SetData.h>
#include <ovGraphics/resourceSets/detail/SetNames.h>

namespace ovGraphics {
class Mesh;
class Node;
class RenderQueue;
class Sampler;
class System;
class Texture;
} // namespace ovGraphics

namespace ovGraphics::detail {

/// Makes a tree of a system's resources.
class OV_API SetWriter {
public:
    /// @param folder that the set goes into, absolute
    SetWriter(System& system, ovMemory::StringView folder);

    /// @param dataName file name of the data
    void write(ovExport::Node& root, ovMemory::StringView dataName);
    const SetDataWriter& getData() const { return _data; }
    /// A line for each thing that could not be kept.
    const ovMemory::Buffer<ovMemory::String>& getWarnings() const { return _warnings; }

private:
    void _collect(System& system);
    void _collectDrawn(const RenderQueue& queue);
    void _writeTexture(Texture& texture, ovExport::Node& entry);
    void _writeTexels(Texture& texture, ovExport::Node& entry);
    void _writeMesh(const Mesh& mesh, ovExport::Node& entry);
    void _writeNode(const Node& node, ovExport::Node& entry);
    void _writeQueue(const RenderQueue& queue, ovExport::Node& entry);

    ovMemory::String _folder;
    SetNames<Sampler> _samplers;
    SetNames<Texture> _textures;
    SetNames<Mesh> _meshes;
    SetNames<Node> _nodes;
    SetNames<RenderQueue> _queues;
    SetDataWriter _data;
    ovMemory::Buffer<ovMemory::String> _warnings;
};

} // namespace ovGraphics::detail
