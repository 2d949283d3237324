// From the space of glTF files to that of the library.
#pragma once

#include <ovMaths/Matrix.h>
#include <ovMaths/Quaternion.h>
#include <ovMaths/Vector.h>

namespace ovGraphics::detail {

// Files are right-handed with +y up, and their cameras look along -z; the library is left-handed, +y up, and
// looks along +z. The mirror M = diag(1, 1, -1) takes one to the other, back and forth. A transformation T
// becomes M T M, and cameras and lights need no further turn.
//
// The mirrored camera sees the mirrored world as it saw the world before: a triangle that runs
// counter-clockwise in the picture, as the front faces of files do, still does. Front faces of the library
// run clockwise, so that triangles must be turned around.

/// A point or direction; w stays.
constexpr ovMaths::Vector mirrorGltf(const ovMaths::Vector& vector) {
    return {vector.x, vector.y, -vector.z, vector.w};
}

/// A rotation: the mirror turns axes of rotation as it turns vectors, and reverses the sense.
constexpr ovMaths::Quaternion mirrorGltf(const ovMaths::Quaternion& rotation) {
    return {-rotation.x, -rotation.y, rotation.z, rotation.w};
}

inline ovMaths::Matrix mirrorGltf(ovMaths::Matrix matrix) {
    for (int i = 0; i < 4; ++i) {
        matrix.m[2][i] = -matrix.m[2][i];
        matrix.m[i][2] = -matrix.m[i][2];
    }
    return matrix;
}

} // namespace ovGraphics::detail
