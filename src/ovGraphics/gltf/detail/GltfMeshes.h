// Meshes of a glTF file.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/gltf/detail/GltfData.h>
#include <ovGraphics/gltf/detail/GltfMaterials.h>
#include <ovGraphics/gltf/detail/GltfNodes.h>
#include <ovGraphics/gltf/detail/GltfSkin.h>
#include <ovGraphics/gltf/detail/GltfWinding.h>

namespace ovGraphics::detail {

/// What meshes are made from.
struct GltfMeshContext {
    const GltfJson& root;
    const GltfData& data;
    const ovMemory::Buffer<GltfVertexNeeds>& needs; ///< of each material
    bool optimize = true;
    GltfReport& report;
};

/// What is to be known of a primitive beside its vertices.
struct GltfPrimitiveNotes {
    bool usable = false; ///< otherwise there is nothing to draw in it, and a warning has said so
    GltfWinding winding; ///< of the file
};

/// Reads one primitive.
/// @param source the object of the file @param skin in whose rest pose the vertices are put; null for none
/// @return false after an error
bool readGltfPrimitive(const GltfMeshContext& context, const GltfObject& source, const GltfSkin* skin,
                       GltfPrimitive& primitive, GltfPrimitiveNotes& notes);

/// Fills the meshes of a scene, whose nodes are there. Nodes that wear a skin lose their mesh to a new root
/// node that stays where the skin puts it. @return false after report.fail()
bool readGltfMeshes(const GltfMeshContext& context, const ovMemory::Buffer<GltfNodeSource>& nodes,
                    GltfScene& scene);

} // namespace ovGraphics::detail
