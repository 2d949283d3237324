// Putting triangles and vertices in an order that the device draws fast.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/scene/VertexComposition.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

/// Rewrites a triangle list so that it draws the same triangles, each with its corners in the same order
/// around it, faster: vertices that are equal byte for byte become one, vertices that no triangle uses go,
/// triangles are ordered for the vertex cache and then, where that costs the cache little, from the outside
/// in (against overdraw), and vertices in the order of their first use. The same input gives the same output.
///
/// @param composition of the vertices; its stride must be 4 to 256 bytes
/// @param vertices packed vertices, a multiple of the stride
/// @param indices triples below the number of vertices. Empty: each three vertices are a triangle; indices
///                are made then
/// @return false, changing nothing, when the input is not as described. No triangle at all is fine
OV_API bool optimizeMesh(const VertexComposition& composition, ovMemory::Buffer<unsigned char>& vertices,
                         ovMemory::Buffer<std::uint32_t>& indices);

} // namespace ovGraphics
