// Vectors packed as the formats of vertices hold them.
#pragma once

#include <ovGraphics/scene/VertexComposition.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {

/// Packs one vector for each attribute of each vertex, as Mesh::fillPackedFromUnpacked tells. NaN becomes 0
/// in formats of whole numbers and fractions.
/// @param values a whole number of vertices
OV_API ovMemory::Buffer<unsigned char> packVertices(const VertexComposition& composition,
                                                    ovMemory::BufferView<const ovMaths::Vector> values);

} // namespace ovGraphics
