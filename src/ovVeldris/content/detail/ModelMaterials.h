// The materials of a model.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>

namespace ovVeldris {
class PbsMaterial;
}

namespace ovVeldris::detail {

class ModelTextures;

/// Sets a new material up to look as a file's material.
void applyMaterial(const ovGraphics::GltfMaterial& source, ModelTextures& textures, PbsMaterial& material);

} // namespace ovVeldris::detail
