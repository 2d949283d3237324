// A meadow of the demo's own making, on top of a hill.
#pragma once

#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Mesh;
class System;
class Texture;
} // namespace ovGraphics

namespace veldris {

/// The height of the ground in metres above a place: uneven near the origin, falling away all around. The
/// same on every run.
float meadowHeight(float x, float z);

/// A square piece of that ground around the origin. @param halfSide metres @return loaded; null after one log
/// line when the device refuses
ovMemory::UniquePtr<ovGraphics::Mesh> makeMeadow(ovGraphics::System& graphics, float halfSide,
                                                 unsigned int rows);
/// Its colours: grass, here and there dry. @param side texels
ovMemory::UniquePtr<ovGraphics::Texture> paintMeadow(ovGraphics::System& graphics, float halfSide,
                                                     unsigned int side);

/// Blades of grass on a disc of radius 1 around the origin, up to half a metre high; no two kinds alike.
ovMemory::UniquePtr<ovGraphics::Mesh> makeGrass(ovGraphics::System& graphics, unsigned int kind,
                                                unsigned int blades);
/// Their colours: from the foot to the tip (v), from green to dry (u).
ovMemory::UniquePtr<ovGraphics::Texture> paintGrass(ovGraphics::System& graphics);

} // namespace veldris
