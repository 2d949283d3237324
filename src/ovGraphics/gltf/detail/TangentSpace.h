// Tangents for normal maps.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/gltf/detail/GltfGeometry.h>

namespace ovGraphics::detail {

/// Sets the tangents of a triangle list whose corners are split and that has unit normals and texture
/// coordinates, for a v that runs down: the bitangent cross(normal, tangent) * w points towards smaller v.
///
/// The rules are MikkTSpace's (Mikkelsen, Simulation of Wrinkled Surfaces Revisited, 2008), which bakers of
/// normal maps use: corners of equal position, normal and texture coordinates share a tangent if their
/// triangles' mappings are both mirrored or both not; each triangle contributes its direction of growing u,
/// projected onto the plane of the normal, with its angle at the corner as weight. A triangle whose mapping
/// has no area contributes nothing and takes over the tangent of its neighbours. Differs from it where two
/// groups of triangles only touch at a corner: they share a tangent here too.
///
/// A corner with no tangent at all gets some direction at a right angle to its normal, and w 1.
OV_API void makeTangents(GltfGeometry& geometry);

} // namespace ovGraphics::detail
