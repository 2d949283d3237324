#include <ovGraphics/scene/BoxTable.h>

#include <algorithm>
#include <limits>
#include <ovGraphics/scene/Frustum.h>

namespace ovGraphics {

namespace {

using Column = ovMemory::Buffer<float>;

constexpr std::size_t MINIMUM = 0;
constexpr std::size_t MAXIMUM = 3;
constexpr float LARGEST = std::numeric_limits<float>::max();
constexpr std::size_t LANES = 8;   // boxes that a vector instruction compares, or a multiple of them
constexpr std::size_t BLOCK = 256; // boxes whose results fit in the nearest cache

std::size_t roundedUp(std::size_t count) {
    return (count + LANES - 1) / LANES * LANES;
}

/// Clears the entries of the boxes that lie outside a plane. Plain arrays and no branch, so that compilers
/// make vector instructions of it; entries as wide as floats for the same reason.
void cutOff(const ovMaths::Vector& plane, const float* x, const float* y, const float* z, std::size_t count,
            uint32_t* inside) {
    for (std::size_t i = 0; i < count; ++i)
        inside[i] &= plane.x * x[i] + plane.y * y[i] + plane.z * z[i] + plane.w < 0.0f ? 0u : 1u;
}

} // namespace

void BoxTable::insert(std::size_t index, std::size_t count) {
    // No box hides from a plane until its own is set: it reaches as far as floats do.
    for (std::size_t column = 0; column < _columns.size(); ++column)
        _columns[column].insert(_columns[column].begin() + static_cast<std::ptrdiff_t>(index), count,
                                column < MAXIMUM ? -LARGEST : LARGEST);
    _count += count;
    _pad();
}

void BoxTable::truncate(std::size_t count) {
    _count = std::min(count, _count);
    _pad();
}

void BoxTable::_pad() {
    for (Column& column : _columns)
        // Whole lanes, so that the comparison needs no loop for the rest.
        column.resize(roundedUp(_count));
}

void BoxTable::set(std::size_t index, const BoundingBox& box) {
    // A box that is empty, or not finite, cannot tell where its entity is: it is never culled.
    const ovMaths::Vector low =
        box.isEmpty() ? ovMaths::Vector(-LARGEST, -LARGEST, -LARGEST) : box.getMinimum();
    const ovMaths::Vector high =
        box.isEmpty() ? ovMaths::Vector(LARGEST, LARGEST, LARGEST) : box.getMaximum();
    const float values[] = {low.x, low.y, low.z, high.x, high.y, high.z};
    for (std::size_t column = 0; column < _columns.size(); ++column)
        _columns[column][index] = values[column];
}

void BoxTable::move(std::size_t from, std::size_t to) {
    for (Column& column : _columns)
        column[to] = column[from];
}

ovMaths::Vector BoxTable::getCenter(std::size_t index) const {
    const auto middle = [&](std::size_t axis) {
        // Halved before the sum, which would overflow for the largest boxes.
        return 0.5f * _columns[MINIMUM + axis][index] + 0.5f * _columns[MAXIMUM + axis][index];
    };
    return {middle(0), middle(1), middle(2)};
}

void BoxTable::check(const Frustum& frustum, unsigned int planeCount, std::size_t begin, std::size_t end,
                     unsigned char* inside) const {
    uint32_t block[BLOCK];
    for (std::size_t first = begin; first < end; first += BLOCK) {
        const std::size_t count = std::min(BLOCK, end - first);
        const std::size_t lanes = std::min(roundedUp(count), _columns[0].size() - first);
        std::fill(block, block + lanes, 1u);
        for (unsigned int i = 0; i < planeCount; ++i) {
            const ovMaths::Vector plane = frustum.getPlane(i);
            // The corner that lies furthest along the plane's normal.
            const auto column = [&](std::size_t axis, float normal) {
                return _columns[(normal >= 0.0f ? MAXIMUM : MINIMUM) + axis].data() + first;
            };
            cutOff(plane, column(0, plane.x), column(1, plane.y), column(2, plane.z), lanes, block);
        }
        inside = std::copy(block, block + count, inside);
    }
}

} // namespace ovGraphics
