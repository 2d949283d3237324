// The maths types as those of GLM, in doubles.
#pragma once

#include <glm/gtc/quaternion.hpp>
#include <ovMaths/Quaternion.h>
#include <ovMaths/Vector.h>

namespace ovMaths {

inline glm::dvec3 toGlm(const Vector& vector) {
    return {vector.x, vector.y, vector.z};
}

inline glm::dquat toGlm(const Quaternion& quaternion) {
    return {quaternion.w, quaternion.x, quaternion.y, quaternion.z};
}

} // namespace ovMaths
