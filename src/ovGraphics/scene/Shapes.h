// Simple meshes: sphere, box, plane and torus.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

class Mesh;
class System;

// All have POSITION, NORMAL, TEXCOORD, TANGENT and BINORMAL, fronts outside, and are loaded and named after
// their shape. Tangents run along u, binormals against v, upwards in the picture. Null after one log line
// when the device refuses.

/// A sphere of radius 1 around the origin. Texture coordinates run around it and from pole to pole.
OV_API ovMemory::UniquePtr<Mesh> makeSphere(System& graphics);

/// A cube of side 2 around the origin; every side shows the whole picture.
OV_API ovMemory::UniquePtr<Mesh> makeBox(System& graphics);

/// A square of side 2 on the plane y = 0 that looks up; the top of the picture lies towards +z.
/// @param repeats of the texture along a side
OV_API ovMemory::UniquePtr<Mesh> makePlane(System& graphics, float repeats = 1.0f);

/// A ring of radius 1 around the y axis. Texture coordinates run around it and around its tube, from the
/// inside over the top. @param thickness radius of the tube, above 0 and below 1
OV_API ovMemory::UniquePtr<Mesh> makeTorus(System& graphics, float thickness = 0.4f);

} // namespace ovGraphics
