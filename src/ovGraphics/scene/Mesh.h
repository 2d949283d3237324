// Vertices and indices on the device.
#pragma once

#include <ovGraphics/resources/Resource.h>
#include <ovGraphics/resources/ShaderInstanceMemorySlot.h>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovGraphics/scene/VertexComposition.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {

struct LoadedProgram;

namespace device {
class GpuBuffer;
class GpuGeometry;
} // namespace device

/// Vertices, and the order in which they make primitives.
///
/// Vertices and indices are given as the *new* arrays. load() uploads them and makes them the *current* ones;
/// the new ones are then empty. load() without new arrays uploads the current ones again. It fails for
/// vertices whose bytes are not a whole number of strides, for an index of a vertex that is not there, and
/// without any vertex.
class OV_API Mesh : public Resource {
public:
    /// A new, unloaded mesh: a triangle list without vertices; a null system means the singleton.
    static ovMemory::UniquePtr<Mesh> create(System* system);
    explicit Mesh(System* system);
    ~Mesh() override;

    void setVertexComposition(const VertexComposition& composition);
    const VertexComposition& getVertexComposition() const { return _composition; }
    /// Points, lines, triangles and their strips. Default TRIANGLELIST. In strips the index 0xffffffff starts
    /// anew.
    void setTopology(PRIMITIVE_TOPOLOGY topology);
    PRIMITIVE_TOPOLOGY getTopology() const { return _topology; }

    /// The vertices that the next load() uploads, as the composition lays them out.
    void setNewVertexArray(ovMemory::Buffer<unsigned char> vertices);
    const ovMemory::Buffer<unsigned char>& getNewVertexArray() const { return _newVertices; }
    const ovMemory::Buffer<unsigned char>& getCurrentVertexArray() const { return _vertices; }
    /// The indices that the next load() uploads; none draws the vertices in their order.
    void setNewIndexArray(ovMemory::Buffer<uint32_t> indices);
    const ovMemory::Buffer<uint32_t>& getNewIndexArray() const { return _newIndices; }
    const ovMemory::Buffer<uint32_t>& getCurrentIndexArray() const { return _indices; }

    /// Replaces vertices of a loaded mesh on the device, without waiting for frames that draw it, and in the
    /// current array while there is one. The bounding box then holds the new vertices; without the current
    /// array it may still hold places of the old ones.
    /// @param vertices a whole number of them, as the composition lays them out
    /// @return false after one log line, changing nothing, when the mesh is not loaded, the bytes are no
    /// whole number of vertices, some of them lie beyond the last one, or the device refuses
    bool updateVertices(unsigned int firstVertex, ovMemory::BufferView<const unsigned char> vertices);
    /// Frees the current arrays of a loaded mesh, whose vertices then are on the device alone. Counts and
    /// bounding box stay; loading again needs new arrays. @return false after one log line, changing nothing,
    /// when the mesh is not loaded
    bool dropCpuCopies();

    /// Packs the new vertex array from one vector for each attribute of each vertex: all attributes of the
    /// first vertex in the order of the composition, then those of the second. Fractions are clamped to the
    /// range of their format and rounded, whole numbers likewise.
    /// @return false, changing nothing, when the values are not a whole number of vertices
    bool fillPackedFromUnpacked(ovMemory::BufferView<const ovMaths::Vector> values);

    /// Of the current arrays.
    unsigned int getVertexCount() const { return _vertexCount; }
    unsigned int getIndexCount() const { return _indexCount; }
    /// The box around the finite positions of the current vertices, by the attribute "POSITION". Empty when
    /// the mesh was never loaded or has no such attribute of three or four floats.
    const BoundingBox& getBoundingBox() const { return _boundingBox; }

    void reset() override;

    /// The mesh as a program reads it, with instance data laid out as the slots say.
    /// @return null when the mesh is unloaded; null after one log line when the device refuses
    device::GpuGeometry* getGeometry(const LoadedProgram& program, InstanceSlots slots);
    /// Indices of a draw; vertices when there are none.
    unsigned int getDrawCount() const { return _indexCount == 0 ? _vertexCount : _indexCount; }

private:
    struct Geometry {
        uint64_t key; ///< input layout of the program and order of the slots
        ovMemory::UniquePtr<device::GpuGeometry> gpuGeometry;
    };

    bool _load(ovMemory::String& error) override;
    void _unload() override;
    void _takeNewArrays();
    bool _check(ovMemory::String& error) const;
    bool _upload(device::Device& device, ovMemory::String& error);
    ovMemory::String _reasonNotToUpdate(unsigned int firstVertex, std::size_t bytes) const;
    void _addToBoundingBox(ovMemory::BufferView<const unsigned char> vertices);
    ovMemory::UniquePtr<device::GpuGeometry> _createGeometry(const LoadedProgram& program,
                                                             InstanceSlots slots) const;

    VertexComposition _composition;
    PRIMITIVE_TOPOLOGY _topology = PRIMITIVE_TOPOLOGY::TRIANGLELIST;
    ovMemory::Buffer<unsigned char> _newVertices;
    ovMemory::Buffer<unsigned char> _vertices;
    ovMemory::Buffer<uint32_t> _newIndices;
    ovMemory::Buffer<uint32_t> _indices;
    unsigned int _vertexCount = 0;
    unsigned int _indexCount = 0;
    bool _copiesAreDropped = false;
    BoundingBox _boundingBox;
    ovMemory::UniquePtr<device::GpuBuffer> _vertexBuffer;
    ovMemory::UniquePtr<device::GpuBuffer> _indexBuffer;
    bool _shortIndices = false;
    ovMemory::Buffer<Geometry> _geometries;
};

} // namespace ovGraphics
