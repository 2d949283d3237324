#include <ovGraphics/scene/BoxTable.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ovGraphics/resources/Frustum.h>

namespace ovGraphics {

using ovMaths::Vector;

namespace {

/// The reach of a box that hides from no plane: as far as floats go.
constexpr float LARGEST = std::numeric_limits<float>::max();
const Vector EVERYWHERE(LARGEST, LARGEST, LARGEST);

} // namespace

void BoxTable::insert(std::size_t index, std::size_t count) {
    const std::size_t oldCount = _count;
    _count += count;
    _bunches.resize((_count + LANES - 1) / LANES);
    for (std::size_t from = oldCount; from > index; --from)
        copy(from - 1, from - 1 + count);
    for (std::size_t i = index; i < index + count; ++i)
        set(i, BoundingBox()); // hides from no plane until its own is set
}

void BoxTable::truncate(std::size_t count) {
    _count = std::min(count, _count);
    _bunches.resize((_count + LANES - 1) / LANES);
}

void BoxTable::set(std::size_t index, const BoundingBox& box, const ovMaths::Matrix& transformation) {
    Vector center;
    Vector reach = EVERYWHERE;
    // A box that is empty, or not finite, cannot tell where its entity is: it is never culled.
    box.getTransformed(transformation, center, reach);
    Bunch& bunch = _bunches[index / LANES];
    const std::size_t lane = index % LANES;
    bunch.center[0][lane] = center.x;
    bunch.center[1][lane] = center.y;
    bunch.center[2][lane] = center.z;
    bunch.reach[0][lane] = reach.x;
    bunch.reach[1][lane] = reach.y;
    bunch.reach[2][lane] = reach.z;
}

bool BoxTable::setCenter(std::size_t index, const Vector& center) {
    Bunch& bunch = _bunches[index / LANES];
    const std::size_t lane = index % LANES;
    const bool isFinite = std::isfinite(center.x) && std::isfinite(center.y) && std::isfinite(center.z);
    if (!isFinite || bunch.reach[0][lane] == LARGEST)
        return false;
    bunch.center[0][lane] = center.x;
    bunch.center[1][lane] = center.y;
    bunch.center[2][lane] = center.z;
    return true;
}

Vector BoxTable::getCenter(std::size_t index) const {
    const auto& center = _bunches[index / LANES].center;
    const std::size_t lane = index % LANES;
    return {center[0][lane], center[1][lane], center[2][lane]};
}

void BoxTable::copy(std::size_t from, std::size_t to) {
    const Bunch& source = _bunches[from / LANES];
    Bunch& target = _bunches[to / LANES];
    for (std::size_t axis = 0; axis < AXES; ++axis) {
        target.center[axis][to % LANES] = source.center[axis][from % LANES];
        target.reach[axis][to % LANES] = source.reach[axis][from % LANES];
    }
}

void BoxTable::check(const Frustum& frustum, unsigned int planeCount, std::size_t begin, std::size_t end,
                     unsigned char* inside) const {
    for (std::size_t first = begin; first < end;) {
        // Entries as wide as floats, and no branch, so that compilers make vector instructions of it.
        uint32_t seen[LANES];
        std::fill(seen, seen + LANES, 1u);
        const auto& [center, reach] = _bunches[first / LANES];
        for (unsigned int i = 0; i < planeCount; ++i) {
            const Vector plane = frustum.getPlane(i);
            const Vector along(std::abs(plane.x), std::abs(plane.y), std::abs(plane.z));
            // A box is outside when its corner that lies furthest along the plane's normal is.
            for (std::size_t lane = 0; lane < LANES; ++lane) {
                const float middle = plane.x * center[0][lane] + plane.y * center[1][lane] +
                                     plane.z * center[2][lane] + plane.w;
                const float most =
                    along.x * reach[0][lane] + along.y * reach[1][lane] + along.z * reach[2][lane];
                seen[lane] &= middle + most < 0.0f ? 0u : 1u;
            }
        }
        const std::size_t last = std::min(first / LANES * LANES + LANES, end);
        inside = std::copy(seen + first % LANES, seen + first % LANES + (last - first), inside);
        first = last;
    }
}

} // namespace ovGraphics
