// The volume that a camera sees.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {

/// Six planes that look inwards: left, right, bottom, top, near, far. A plane (x, y, z, w) has a unit normal,
/// and a point p is inside when dot(normal, p) + w is at least 0.
class OV_API Frustum {
public:
    static constexpr unsigned int PLANE_COUNT = 6;

    Frustum() = default;
    /// The volume that a matrix from world to clip space keeps, y up and depth 0 to 1 (Gribb, Hartmann: Fast
    /// Extraction of Viewing Frustum Planes, 2001).
    explicit Frustum(const ovMaths::Matrix& worldToClip);

    /// A plane by its place in the order above; zero beyond the sixth.
    ovMaths::Vector getPlane(unsigned int index) const {
        return index < PLANE_COUNT ? _planes[index] : ovMaths::Vector();
    }
    Frustum copy() const { return *this; }

private:
    std::array<ovMaths::Vector, PLANE_COUNT> _planes{};
};

} // namespace ovGraphics
