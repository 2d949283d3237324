// Triangles that run the wrong way round.
#pragma once

#include <cstddef>
#include <ovCommon/Api.h>
#include <ovGraphics/gltf/detail/GltfGeometry.h>

namespace ovGraphics::detail {

/// How the triangles of a primitive run around their normals.
struct GltfWinding {
    std::size_t triangles = 0; ///< that have an area
    std::size_t against = 0;   ///< of these: seen from where their normals look, they run clockwise

    /// Whether it is a mesh wound the other way, rather than one with a few odd triangles or with leaves
    /// whose normals look away from the trunk: two thirds and more run against their normals.
    bool isAgainst() const { return against > 0 && against >= 2 * (triangles - against); }
};

/// Compares triangles with the mean normals of their corners. A triangle that these look along, as grass
/// whose normals all look up, runs neither way. @param geometry with normals of length one
OV_API GltfWinding compareWinding(const GltfGeometry& geometry);

/// Makes triangles and normals of a geometry whose winding is against its normals agree. Normals are mostly
/// right, because everybody sees them, and a mirrored or converted mesh has lost its winding; so the
/// triangles are turned. But triangles that enclose a volume from outside are right: then the normals are
/// turned, and the sign of tangents with them, which keeps the bitangents.
OV_API void repairWinding(GltfGeometry& geometry);

} // namespace ovGraphics::detail
