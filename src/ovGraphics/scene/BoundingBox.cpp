#include <ovGraphics/scene/BoundingBox.h>

#include <algorithm>
#include <cmath>
#include <ovGraphics/scene/Frustum.h>

namespace ovGraphics {

using ovMaths::Vector;

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
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
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
    return {0.5f * _minimum.x + 0.5f * _maximum.x, 0.5f * _minimum.y + 0.5f * _maximum.y,
            0.5f * _minimum.z + 0.5f * _maximum.z};
}

Vector BoundingBox::getSize() const {
    if (isEmpty())
        return {};
    return {_maximum.x - _minimum.x, _maximum.y - _minimum.y, _maximum.z - _minimum.z};
}

BoundingBox BoundingBox::getTransformed(const ovMaths::Matrix& transformation) const {
    if (isEmpty())
        return {};
    const auto& m = transformation.m;
    const float low[3] = {_minimum.x, _minimum.y, _minimum.z};
    const float high[3] = {_maximum.x, _maximum.y, _maximum.z};
    float minimum[3];
    float maximum[3];
    for (int row = 0; row < 3; ++row) {
        minimum[row] = maximum[row] = m[row][3];
        for (int column = 0; column < 3; ++column) {
            const float a = m[row][column] * low[column];
            const float b = m[row][column] * high[column];
            minimum[row] += std::min(a, b);
            maximum[row] += std::max(a, b);
        }
    }
    BoundingBox box;
    box.add(Vector(minimum[0], minimum[1], minimum[2]));
    box.add(Vector(maximum[0], maximum[1], maximum[2]));
    return box;
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
