// The meshes of a model.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>

namespace ovGraphics {
class Mesh;
class System;
} // namespace ovGraphics

namespace ovVeldris::detail {

/// A loaded mesh of a primitive. @param doubleSided adds the back faces as triangles of their own, with
/// normals that look the other way @return null after one log line when it cannot be loaded
OV_API ovMemory::UniquePtr<ovGraphics::Mesh> makeMesh(ovGraphics::System& graphics,
                                                      const ovGraphics::GltfPrimitive& primitive,
                                                      ovMemory::StringView name, bool doubleSided);

} // namespace ovVeldris::detail
