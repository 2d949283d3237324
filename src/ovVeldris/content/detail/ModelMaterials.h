// The materials of a model.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>

namespace ovVeldris {
class PbsMaterial;
}

namespace ovVeldris::detail {

class ModelTextures;

/// Sets a new material up to look as a file's material. Numbers are rounded to the six decimals that
/// declarations keep of colours, so that a material that was saved and read again draws the same bits.
void applyMaterial(const ovGraphics::GltfMaterial& source, ModelTextures& textures, PbsMaterial& material);

} // namespace ovVeldris::detail
