// Cubes laid out in one picture: crosses and strips.
#pragma once

#include <ovImages/cubes/CubeMap.h>

namespace ovImages {

/// How six square faces lie in a picture.
enum class CUBE_LAYOUT : unsigned int {
    NONE = 0, ///< the picture has another shape
    /// Four faces wide and three high (-X, +Z, +X, -Z from left to right, +Y above and -Y below +Z), or three
    /// wide and four high (-Z below -Y, turned by half a turn, so that it joins there).
    CROSS = 1,
    /// The six faces in their order, below or beside each other.
    STRIP = 2,
    /// The faces below each other as OpenEXR's attribute "envmap" has them, in its right-handed space; they
    /// are taken so that the middle of a panorama with that attribute lies in +X.
    EXR_STRIP = 3
};

inline constexpr ovMemory::EnumEntry<CUBE_LAYOUT> CUBE_LAYOUT_ENTRIES[] = {
    {CUBE_LAYOUT::NONE, "NONE"},
    {CUBE_LAYOUT::CROSS, "CROSS"},
    {CUBE_LAYOUT::STRIP, "STRIP"},
    {CUBE_LAYOUT::EXR_STRIP, "EXR_STRIP"},
};
constexpr ovMemory::EnumTable<CUBE_LAYOUT> enumTable(CUBE_LAYOUT) {
    return {"CUBE_LAYOUT", CUBE_LAYOUT_ENTRIES};
}

/// The layout that a picture of this size can have: 4:3 and 3:4 are a cross, 1:6 and 6:1 a strip.
OV_API CUBE_LAYOUT cubeLayoutOf(unsigned int width, unsigned int height);

/// The faces of a picture, one mip of a cube. @return the empty picture when memory does not suffice or the
/// picture has not the layout's shape
OV_API Image facesOfPicture(const ImageView& picture, CUBE_LAYOUT layout);

/// A cross of four by three faces, zeros between them. @return the empty picture when memory does not suffice
OV_API Image crossOfFaces(const Image& mip);

} // namespace ovImages
