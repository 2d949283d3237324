// The meshes of the demo.
#pragma once

#include <ovMemory/Memory.h>

namespace ovGraphics {
class Mesh;
class System;
} // namespace ovGraphics

namespace veldris {

// Both have POSITION, NORMAL, TEXCOORD, TANGENT and BINORMAL and are loaded; null when the device refuses.

/// A sphere of radius 1 around the origin. Texture coordinates run around it and from pole to pole.
ovMemory::UniquePtr<ovGraphics::Mesh> makeSphere(ovGraphics::System& graphics);

/// A square of side 2 on the plane y = 0 that looks up. @param repeats of the texture along a side
ovMemory::UniquePtr<ovGraphics::Mesh> makeGround(ovGraphics::System& graphics, float repeats);

} // namespace veldris
