#include <ovGraphics/scene/BoundingBox.h>

#include <algorithm>
#include <cmath>
#include <ovGraphics/resources/Frustum.h>

namespace ovGraphics {

using ovMaths::Vector;

namespace {

// One comparison in place of three: each moving entity comes by here.
bool isFinite(const Vector& point) {
    return 0.0f * point.x + 0.0f * point.y + 0.0f * point.z == 0.0f; // infinities times 0 are NaN
}

} // namespace

BoundingBox BoundingBox::newCube(const Vector& center, float side) {
    return newBox(center, Vector(side, side, side));
}

BoundingBox BoundingBox::newBox(const Vector& center, const Vector& size) {
    BoundingBox box;
    box.add(Vector(center.x - 0.5f * size.x, center.y - 0.5f * size.y, center.z - 0.5f * size.z));
    box.add(Vector(center.x + 0.5f * size.x, center.y + 0.5f * size.y, center.z + 0.5f * size.z));
    return box;
}

void BoundingBox::add(const Vector& point) {
    if (!isFinite(point))
        return;
    _minimum = {std::min(_minimum.x, point.x), std::min(_minimum.y, point.y), std::min(_minimum.z, point.z)};
    _maximum = {std::max(_maximum.x, point.x), std::max(_maximum.y, point.y), std::max(_maximum.z, point.z)};
}

void BoundingBox::add(const BoundingBox& other) {
    if (other.isEmpty())
        return;
    add(other._minimum);
    add(other._maximum);
}

Vector BoundingBox::getCenter() const {
    if (isEmpty())
        return {};
    // Halved before the sum, which would overflow for the largest boxes.
    return {0.5f * _minimum.x + 0.5f * _maximum.x, 0.5f * _minimum.y + 0.5f * _maximum.y,
            0.5f * _minimum.z + 0.5f * _maximum.z};
}

Vector BoundingBox::getSize() const {
    if (isEmpty())
        return {};
    return {_maximum.x - _minimum.x, _maximum.y - _minimum.y, _maximum.z - _minimum.z};
}

BoundingBox BoundingBox::getTransformed(const ovMaths::Matrix& transformation) const {
    Vector center;
    Vector reach;
    BoundingBox box;
    if (!getTransformed(transformation, center, reach))
        return box;
    box._minimum = {center.x - reach.x, center.y - reach.y, center.z - reach.z};
    box._maximum = {center.x + reach.x, center.y + reach.y, center.z + reach.z};
    return box;
}

bool BoundingBox::getTransformed(const ovMaths::Matrix& transformation, Vector& center, Vector& reach) const {
    if (isEmpty())
        return false;
    const auto& m = transformation.m;
    const Vector middle = _minimum * 0.5f + _maximum * 0.5f;
    const Vector half = _maximum * 0.5f - _minimum * 0.5f;
    const auto moved = [&](int row) {
        return m[row][0] * middle.x + m[row][1] * middle.y + m[row][2] * middle.z + m[row][3];
    };
    // The half size through the absolute matrix gives the box of all eight corners without computing them.
    const auto reached = [&](int row) {
        return std::abs(m[row][0]) * half.x + std::abs(m[row][1]) * half.y + std::abs(m[row][2]) * half.z;
    };
    const Vector movedMiddle(moved(0), moved(1), moved(2));
    const Vector movedHalf(reached(0), reached(1), reached(2));
    if (!isFinite(movedMiddle) || !isFinite(movedHalf))
        return false;
    center = movedMiddle;
    reach = movedHalf;
    return true;
}

bool BoundingBox::checkAgainst(const Frustum& frustum) const {
    if (isEmpty())
        return false;
    for (unsigned int i = 0; i < Frustum::PLANE_COUNT; ++i) {
        const Vector plane = frustum.getPlane(i);
        // The corner that lies furthest along the plane's normal.
        const float x = plane.x >= 0.0f ? _maximum.x : _minimum.x;
        const float y = plane.y >= 0.0f ? _maximum.y : _minimum.y;
        const float z = plane.z >= 0.0f ? _maximum.z : _minimum.z;
        if (plane.x * x + plane.y * y + plane.z * z + plane.w < 0.0f)
            return false;
    }
    return true;
}

} // namespace ovGraphics
