// A landscape of the demo's own making.
#pragma once

#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Mesh;
class System;
} // namespace ovGraphics

namespace veldris {

/// The height of mountains on both sides of a valley along z, 0 to 1, the same on every run: ridges of smooth
/// noise, octave upon octave (Musgrave: "Texturing and Modeling", 3rd edition, chapter 16).
/// @param x, z -1 to 1
float terrainHeight(float x, float z);

/// How steep that is: the normal where heights are scaled and sides are 1.
ovMaths::Vector terrainNormal(float x, float z, float heightScale);

/// What grows there: grass below, rock where it is steep, snow above. @param u, v texture coordinates of the
/// mesh
ovMaths::Vector terrainColor(float u, float v, float heightScale);

/// A mesh of these heights over a square of side 2, with texture coordinates from (0, 0) at (-1, 1).
/// @param columns, rows of vertices @return null after one log line when the device refuses
ovMemory::UniquePtr<ovGraphics::Mesh> makeTerrain(ovGraphics::System& graphics, unsigned int columns,
                                                  unsigned int rows);

} // namespace veldris
