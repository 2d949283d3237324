// Materials, textures and images of a glTF file.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/gltf/detail/GltfData.h>
#include <ovGraphics/gltf/detail/GltfJson.h>
#include <ovGraphics/gltf/detail/GltfUvSets.h>

namespace ovGraphics::detail {

/// What a material asks of the vertices.
struct GltfVertexNeeds {
    GltfUvSource uvs;
    bool anyTexture = false;
    bool tangents = false;
};

/// Fills the images, textures and materials of a scene. @param needs of each material, in their order
/// @return false after report.fail()
bool readGltfMaterials(const GltfJson& root, const GltfData& data, ovMemory::StringView folder,
                       GltfReport& report, GltfScene& scene, ovMemory::Buffer<GltfVertexNeeds>& needs);

} // namespace ovGraphics::detail
