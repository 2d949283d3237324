// Many boxes in columns, so that one plane is compared with several of them at once.
#pragma once

#include <array>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

/// A list of boxes, each coordinate in an array of its own.
class OV_API BoxTable {
public:
    std::size_t getCount() const { return _count; }
    /// Inserts boxes that hold everything; later ones move up. @param index at most getCount()
    void insert(std::size_t index, std::size_t count = 1);
    /// Drops the boxes from an index on.
    void truncate(std::size_t count);
    /// An empty box counts as one that holds everything.
    void set(std::size_t index, const BoundingBox& box);
    /// Moves a box to a smaller index, over what is there.
    void move(std::size_t from, std::size_t to);
    /// (0, 0, 0) for a box that holds everything.
    ovMaths::Vector getCenter(std::size_t index) const;

    /// Tells of the boxes from begin to end whether they may be seen, as BoundingBox::checkAgainst does.
    /// @param planeCount the first so many of the frustum's planes cut off @param inside gets 1 or 0 for each
    void check(const Frustum& frustum, unsigned int planeCount, std::size_t begin, std::size_t end,
               unsigned char* inside) const;

private:
    void _pad();

    /// Minimum x, y, z, then maximum x, y, z; longer than the count, so that vector instructions end evenly.
    std::array<ovMemory::Buffer<float>, 6> _columns;
    std::size_t _count = 0;
};

} // namespace ovGraphics
