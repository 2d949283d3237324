// Materials, textures and images of a glTF file.
#pragma once

#include <array>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/gltf/detail/GltfData.h>
#include <ovGraphics/gltf/detail/GltfJson.h>

namespace ovGraphics::detail {

/// Which texture coordinates a material reads its textures with, and what it does to them first.
struct GltfUvSource {
    unsigned int set = 0; ///< n of TEXCOORD_n
    /// u' = a[0] u + a[1] v + a[2], v' = a[3] u + a[4] v + a[5]
    std::array<float, 6> transform{1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f};

    bool isIdentity() const { return transform == GltfUvSource().transform; }
    bool operator==(const GltfUvSource&) const = default;
};

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
