#include <ovGraphics/scene/CameraFraming.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ovGraphics/resources/Camera.h>

namespace ovGraphics {

using ovMaths::Vector;

namespace {

constexpr float SMALLEST_RADIUS = 1e-3f; // metres; of boxes that are points
constexpr float NEAREST_SHARE = 0.01f;   // of the way to the far end of a box
constexpr float CORNER_MARGIN = 0.03f; // of the radius: more than the near plane takes of it, seen from there

bool isAboveZero(float number) {
    return std::isfinite(number) && number > 0.0f;
}

/// Why a box cannot be framed; empty when it can.
ovMemory::String findProblem(const BoundingBox& box, const Vector& direction, const BoxFraming& framing) {
    if (!std::isfinite(box.getSize().getLengthVec3()))
        return "it is too large";
    if (!(direction.getNormalizedVec3().getLengthVec3() > 0.5f)) // 0 or 1, or no number
        return "the direction to look along is zero or not finite";
    if (!isAboveZero(framing.aspect))
        return "the aspect is not above 0";
    if (!(framing.verticalFov > 0.0f && framing.verticalFov < std::numbers::pi_v<float>))
        return "the vertical angle is not between 0 and pi";
    if (!isAboveZero(framing.filled) || !isAboveZero(framing.zoom))
        return "the share to fill or the zoom is not above 0";
    return {};
}

float radiusOf(const BoundingBox& box) {
    return std::max(0.5f * box.getSize().getLengthVec3(), SMALLEST_RADIUS);
}

/// The distance from the box's centre at which all its corners are in view.
float fittingDistance(const Camera& camera, const BoundingBox& box, const BoxFraming& framing) {
    const float tangentY = framing.filled * std::tan(0.5f * framing.verticalFov);
    const float tangentX = tangentY * framing.aspect;
    const ovMaths::Matrix view = camera.getViewMatrix();
    const Vector half = box.getSize() * 0.5f;
    float distance = 0.0f;
    // The sphere around the box would be simpler, but leaves long models small in the picture.
    for (unsigned int corner = 0; corner < 8; ++corner) {
        const auto side = [corner](unsigned int axis) { return corner >> axis & 1u ? 1.0f : -1.0f; };
        const Vector offset(half.x * side(0), half.y * side(1), half.z * side(2), 0.0f); // 0: only turned
        const Vector seen = view * offset;
        // A corner in the middle of the picture asks for nothing to its sides.
        const float wanted = std::max(
            {std::abs(seen.x) / tangentX, std::abs(seen.y) / tangentY, CORNER_MARGIN * radiusOf(box)});
        distance = std::max(distance, wanted - seen.z);
    }
    return distance;
}

} // namespace

ovMemory::Result frameBox(Camera& camera, const BoundingBox& box, const Vector& direction,
                          const BoxFraming& framing) {
    ovMemory::String problem = findProblem(box, direction, framing);
    if (problem.empty()) {
        camera.lookAt(direction, Vector());
        const float distance = std::max(fittingDistance(camera, box, framing), SMALLEST_RADIUS);
        // A direction of length 1, but for rounding, stays what it is to the bit, and so does the picture.
        const bool isUnit = std::abs(direction.getLengthVec3() - 1.0f) < 1e-6f;
        const Vector forward = isUnit ? direction : camera.getDirection();
        camera.setPosition(box.getCenter() - forward * (distance / framing.zoom));
        if (!fitPlanes(camera, box, framing))
            problem = "it is too far away for the planes of a camera";
    }
    if (problem.empty())
        return {};
    return ovMemory::failed("the camera '" + ovMemory::String(camera.getName()) +
                            "' cannot show the box: " + problem);
}

bool fitPlanes(Camera& camera, const BoundingBox& box, const BoxFraming& framing) {
    const float radius = radiusOf(box);
    const float distance = Vector::distanceVec3(camera.getPosition(), box.getCenter());
    const float nearest = std::max(distance - radius, NEAREST_SHARE * (distance + radius));
    return camera.setPerspective(framing.verticalFov, framing.aspect, nearest, distance + 2.0f * radius);
}

} // namespace ovGraphics
