// The geometry of one primitive, in the space of its file, on its way to packed vertices.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/formats/Enums.h>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// What glTF calls the mode of a primitive.
enum class GLTF_MODE : unsigned int {
    POINTS = 0,
    LINES = 1,
    LINE_LOOP = 2,
    LINE_STRIP = 3,
    TRIANGLES = 4,
    TRIANGLE_STRIP = 5,
    TRIANGLE_FAN = 6
};

/// Values of each vertex. All that are not empty have one size.
struct GltfGeometry {
    ovMemory::Buffer<ovMaths::Vector> positions;
    ovMemory::Buffer<ovMaths::Vector> normals;
    ovMemory::Buffer<ovMaths::Vector> uvs;      ///< x, y
    ovMemory::Buffer<ovMaths::Vector> tangents; ///< w: the sign of the bitangent
    /// Always there, below the number of positions.
    ovMemory::Buffer<std::uint32_t> indices;
    PRIMITIVE_TOPOLOGY topology = PRIMITIVE_TOPOLOGY::TRIANGLELIST;

    bool isTriangles() const { return topology == PRIMITIVE_TOPOLOGY::TRIANGLELIST; }
};

/// Turns indices of a mode into those of a list, or of a strip of lines, and sets the topology. Corners that
/// make no whole line or triangle go; so do the triangles of a strip that join its parts, having an index
/// twice.
OV_API void setGltfTopology(GLTF_MODE mode, GltfGeometry& geometry);

/// Removes the points, lines, triangles and corners of a strip that touch a position that is NaN or infinite,
/// and makes such positions zero. @return how many positions there were
OV_API std::size_t dropNonFinitePositions(GltfGeometry& geometry);

/// Gives each index a vertex of its own; the indices become 0, 1, 2, ...
OV_API void splitGltfCorners(GltfGeometry& geometry);

/// Sets the normals of split triangles to those of their planes; (0, 0, 1) where there is none.
OV_API void makeFlatNormals(GltfGeometry& geometry);

/// Scales normals to length one. One that is zero or not finite becomes the mean of its triangles' planes,
/// weighted by their areas, or (0, 0, 1). @return how many there were
OV_API std::size_t repairNormals(GltfGeometry& geometry);

/// Some unit vector at a right angle to a unit vector.
OV_API ovMaths::Vector perpendicularTo(const ovMaths::Vector& direction);

/// Fills composition, vertices, indices, topology and box of a primitive in the space of the library.
OV_API void packGltfGeometry(const GltfGeometry& geometry, GltfPrimitive& primitive);

} // namespace ovGraphics::detail
