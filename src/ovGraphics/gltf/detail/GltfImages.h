// Images of a glTF file, and the textures that read them.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/gltf/detail/GltfData.h>
#include <ovGraphics/gltf/detail/GltfJson.h>

namespace ovGraphics::detail {

/// Fills the images of a scene. One that cannot be had, or whose format is not known, stays missing, with a
/// warning. @return false after report.fail()
bool readGltfImages(const GltfJson& root, const GltfData& data, ovMemory::StringView folder,
                    GltfReport& report, GltfScene& scene);

/// Fills the textures of a scene, whose images are there. @return false after report.fail()
bool readGltfTextures(const GltfJson& root, GltfReport& report, GltfScene& scene);

} // namespace ovGraphics::detail
