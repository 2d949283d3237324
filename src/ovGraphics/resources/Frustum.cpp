#include <ovGraphics/resources/Frustum.h>

#include <cmath>

namespace ovGraphics {

using ovMaths::Vector;

namespace {

Vector normalizedPlane(const Vector& plane) {
    const float length = plane.getLengthVec3();
    return length > 0.0f && std::isfinite(length) ? plane / length : plane;
}

} // namespace

Frustum::Frustum(const ovMaths::Matrix& worldToClip) {
    const Vector x = worldToClip.getRow0();
    const Vector y = worldToClip.getRow1();
    const Vector z = worldToClip.getRow2();
    const Vector w = worldToClip.getRow3();
    // Points inside satisfy -w <= x <= w and so on in clip space; each inequality is a plane in world space.
    _planes = {normalizedPlane(w + x), normalizedPlane(w - x), normalizedPlane(w + y),
               normalizedPlane(w - y), normalizedPlane(z),     normalizedPlane(w - z)};
}

} // namespace ovGraphics
