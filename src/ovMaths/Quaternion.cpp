#include <algorithm>
#include <ovMaths/GlmInternal.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/NumberTextInternal.h>
#include <ovMaths/Quaternion.h>

namespace ovMaths {

namespace {

// The unit quaternion, or the identity when there is no direction in the four numbers.
Quaternion fromGlm(const glm::dquat& quaternion) {
    const double length = glm::length(quaternion);
    if (!(length > 0.0) || !std::isfinite(length))
        return {};
    return {float(quaternion.x / length), float(quaternion.y / length), float(quaternion.z / length),
            float(quaternion.w / length)};
}

} // namespace

Quaternion Quaternion::slerp(const Quaternion& from, const Quaternion& to, float factor) {
    Quaternion start = from;
    Quaternion end = to;
    start.normalize();
    end.normalize();
    // Written so that NaN becomes 0.
    const double clamped = factor > 0.0f ? std::min(double(factor), 1.0) : 0.0;
    return fromGlm(glm::slerp(toGlm(start), toGlm(end), clamped));
}

Vector Quaternion::getAsEulerAngles() const {
    // The rotation Ry(yaw) * Rx(pitch) * Rz(roll) has -sin(pitch) at row 1, column 2; the other angles are
    // read from the rows and columns that share its cosine.
    const double squared = double(x) * x + double(y) * y + double(z) * z + double(w) * w;
    if (!(squared > 0.0) || !std::isfinite(squared))
        return {};
    const double s = 2.0 / squared;
    const double r12 = s * (double(y) * z - double(w) * x);
    const double sinPitch = std::clamp(-r12, -1.0, 1.0);
    const double pitch = std::asin(sinPitch);
    // Yaw and roll turn about the same axis there, so all of the turn is given to the yaw.
    constexpr double POLE = 1.0 - 1e-6;
    if (std::abs(sinPitch) > POLE) {
        const double r00 = 1.0 - s * (double(y) * y + double(z) * z);
        const double r20 = s * (double(x) * z - double(w) * y);
        return {float(pitch), float(std::atan2(-r20, r00)), 0.0f};
    }
    const double r02 = s * (double(x) * z + double(w) * y);
    const double r22 = 1.0 - s * (double(x) * x + double(y) * y);
    const double r10 = s * (double(x) * y + double(w) * z);
    const double r11 = 1.0 - s * (double(x) * x + double(z) * z);
    return {float(pitch), float(std::atan2(r02, r22)), float(std::atan2(r10, r11))};
}

Vector Quaternion::transform(const Vector& vector) const {
    // v + 2w(u x v) + 2 u x (u x v), which is q v q* for a unit q = (u, w).
    const glm::dvec3 axis(x, y, z);
    const glm::dvec3 turned = 2.0 * glm::cross(axis, toGlm(vector));
    const glm::dvec3 result = toGlm(vector) + double(w) * turned + glm::cross(axis, turned);
    return {float(result.x), float(result.y), float(result.z), vector.w};
}

void Quaternion::setFromAxisAngle(const Vector& axis, float angle) {
    const glm::dvec3 direction = toGlm(axis);
    const double length = glm::length(direction);
    if (!(length > 0.0) || !std::isfinite(length) || !std::isfinite(angle)) {
        *this = Quaternion();
        return;
    }
    *this = fromGlm(glm::angleAxis(double(angle), direction / length));
}

void Quaternion::setFromEuler(float pitch, float yaw, float roll) {
    const auto about = [](double angle, const glm::dvec3& axis) { return glm::angleAxis(angle, axis); };
    *this =
        fromGlm(about(yaw, {0.0, 1.0, 0.0}) * about(pitch, {1.0, 0.0, 0.0}) * about(roll, {0.0, 0.0, 1.0}));
}

void Quaternion::setFromRotationBetween(const Vector& from, const Vector& to) {
    const glm::dvec3 start = toGlm(from);
    const glm::dvec3 end = toGlm(to);
    const double lengths = glm::length(start) * glm::length(end);
    if (!(lengths > 0.0) || !std::isfinite(lengths)) {
        *this = Quaternion();
        return;
    }
    const double cosine = glm::dot(start, end) / lengths;
    // Opposite to within the precision of floats: the cross product no longer tells the axis.
    if (cosine < -1.0 + 1e-12) {
        const glm::dvec3 other =
            std::abs(start.x) < std::abs(start.y) ? glm::dvec3(1, 0, 0) : glm::dvec3(0, 1, 0);
        *this = fromGlm(glm::dquat(0.0, glm::normalize(glm::cross(start, other))));
        return;
    }
    // Half the angle without trigonometry: (1 + cos, sin * axis) points the same way as (cos half, sin half *
    // axis).
    *this = fromGlm(glm::dquat(1.0 + cosine, glm::cross(start, end) / lengths));
}

void Quaternion::setFromOrientationMatrix(const Matrix& matrix) {
    glm::dmat3 rotation;
    bool anything = false;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            rotation[column][row] = matrix.m[row][column];
            anything = anything || matrix.m[row][column] != 0.0f;
        }
    *this = anything ? fromGlm(glm::quat_cast(rotation)) : Quaternion();
}

void Quaternion::setFromTransformationMatrix(const Matrix& matrix) {
    *this = matrix.getOrientationComponent();
}

void Quaternion::normalize() {
    *this = fromGlm(toGlm(*this));
}

ovMemory::String Quaternion::toString() const {
    ovMemory::String text;
    appendFour(text, "Quat", {x, y, z, w});
    return text;
}

} // namespace ovMaths
