// Cubes unfolded to a cross.
#pragma once

#include <optional>
#include <veldris/bake/CubeMap.h>

namespace veldris {

/// Whether a picture has the shape of a cross of square faces: four faces wide and three high (-X, +Z, +X, -Z
/// from left to right, +Y above and -Y below +Z), or three wide and four high (-Z below -Y, turned by half a
/// turn, so that it joins there).
bool isCross(unsigned int width, unsigned int height);

/// The faces of a cross, one mip of a cube. @return the empty picture when memory does not suffice or the
/// shape is no cross
ovImages::Image facesOfCross(const ovImages::ImageView& cross);

/// A cross of four by three faces, zeros between them. @return the empty picture when memory does not suffice
ovImages::Image crossOfFaces(const ovImages::Image& mip);

} // namespace veldris
