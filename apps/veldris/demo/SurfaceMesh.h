// Meshes of computed surfaces.
#pragma once

#include <functional>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Mesh;
class System;
} // namespace ovGraphics

namespace veldris {

/// A corner of triangles. In texture, x and y count.
struct SurfaceCorner {
    ovMaths::Vector position;
    ovMaths::Vector normal;
    ovMaths::Vector texture;
};

/// Collects triangles for a mesh with positions, normals and texture coordinates.
class SurfaceMesh {
public:
    /// A place for each pair of numbers from 0 to 1, also a little outside, where normals are taken from.
    using Surface = std::function<ovMaths::Vector(float u, float v)>;

    /// Adds corners of triangles, clockwise as seen from outside.
    void addTriangles(ovMemory::BufferView<const SurfaceCorner> corners,
                      ovMemory::BufferView<const uint32_t> indices);

    /// Adds a grid over a surface whose outside is where the directions of u and v have their cross product.
    /// @param columns, rows of corners, from 2 @param texture maps u and v to texture coordinates; null: as
    /// they are
    void addGrid(unsigned int columns, unsigned int rows, const Surface& surface,
                 const Surface& texture = nullptr);

    /// @return loaded; null after one log line when the device refuses
    ovMemory::UniquePtr<ovGraphics::Mesh> make(ovGraphics::System& graphics, ovMemory::StringView name);

private:
    ovMemory::Buffer<ovMaths::Vector> _vertices; ///< three for a corner
    ovMemory::Buffer<uint32_t> _indices;
};

} // namespace veldris
