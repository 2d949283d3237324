// Rotations as unit quaternions.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovMaths {

class Matrix;

/// A rotation: four 32-bit floats, (x, y, z) = axis * sin(angle / 2) and w = cos(angle / 2).
///
/// A positive angle about the z axis turns +x towards +y (about x: +y towards +z, about y: +z towards +x). In
/// the left-handed space of the family that is clockwise for an eye at the axis' positive end looking at the
/// origin.
class OV_API Quaternion {
public:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 1.0f;

    /// The identity, no rotation.
    constexpr Quaternion() = default;
    constexpr Quaternion(float xValue, float yValue, float zValue, float wValue)
        : x(xValue)
        , y(yValue)
        , z(zValue)
        , w(wValue) {}

    /// The four numbers as given, not normalised.
    static constexpr Quaternion newQuat4(float xValue, float yValue, float zValue, float wValue) {
        return {xValue, yValue, zValue, wValue};
    }

    /// The rotation from one to the other by the shorter arc at constant speed: `from` at factor 0, `to` at 1
    /// (or its negative, which is the same rotation). Factors outside 0..1 are clamped; the result has length
    /// one.
    static Quaternion slerp(const Quaternion& from, const Quaternion& to, float factor);

    /// The angles in radians that setFromEuler() takes, for a quaternion of any length but zero (which gives
    /// zeros): x (pitch) in -pi/2..pi/2, y (yaw) and z (roll) in -pi..pi, w 0. Within 1e-6 of the poles,
    /// where the sine of the pitch is 1 or -1, only yaw and roll together are known: the roll is reported as
    /// 0.
    Vector getAsEulerAngles() const;

    /// The vector's x, y and z rotated by this unit quaternion; w is kept.
    Vector transform(const Vector& vector) const;

    /// Appends a rotation: this becomes next * this, which rotates as before and then as `next` does.
    void apply(const Quaternion& next) { *this = next * *this; }

    /// The rotation about an axis (of any length but zero) by an angle in radians. A zero or non-finite axis
    /// or a non-finite angle gives the identity.
    void setFromAxisAngle(const Vector& axis, float angle);

    /// From angles in radians about x (pitch), y (yaw) and z (roll): first the roll, then the pitch, then the
    /// yaw, about the fixed axes. A non-finite angle gives the identity.
    void setFromEuler(float pitch, float yaw, float roll);

    /// The smallest rotation that turns the direction `from` into the direction `to`; their lengths do not
    /// matter. A zero or non-finite vector gives the identity; opposite directions give half a turn about an
    /// axis at a right angle to them, chosen from the x and y axes.
    void setFromRotationBetween(const Vector& from, const Vector& to);

    /// From the upper left 3x3 of a matrix that is a rotation. Anything else gives some unit quaternion; one
    /// with no orientation in it at all (all zero, or non-finite) gives the identity.
    void setFromOrientationMatrix(const Matrix& matrix);

    /// From a matrix of translation, rotation and scale, as Matrix::getOrientationComponent() does.
    void setFromTransformationMatrix(const Matrix& matrix);

    /// Scales to length one. A zero or non-finite quaternion becomes the identity.
    void normalize();

    /// The opposite rotation of a unit quaternion.
    constexpr Quaternion getConjugate() const { return {-x, -y, -z, w}; }

    /// The Hamilton product: rotates as `other` does, then as this does.
    constexpr Quaternion operator*(const Quaternion& other) const {
        return {w * other.x + x * other.w + y * other.z - z * other.y,
                w * other.y - x * other.z + y * other.w + z * other.x,
                w * other.z + x * other.y - y * other.x + z * other.w,
                w * other.w - x * other.x - y * other.y - z * other.z};
    }

    /// Exact equality of the four numbers; q and -q are the same rotation, but not equal.
    constexpr bool operator==(const Quaternion& other) const = default;

    /// "Quat(x, y, z, w)" with six decimals each and a point, whatever the locale.
    ovMemory::String toString() const;
};

} // namespace ovMaths
