// Many boxes, of which several are compared with a plane at once.
#pragma once

#include <ovGraphics/scene/BoundingBox.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

/// A list of boxes in bunches, in which each coordinate is an array: one vector instruction compares a bunch.
class OV_API BoxTable {
public:
    std::size_t getCount() const { return _count; }
    /// Inserts boxes that hold everything; later ones move up. @param index at most getCount()
    void insert(std::size_t index, std::size_t count = 1);
    /// Drops the boxes from an index on.
    void truncate(std::size_t count);
    /// Sets the transformed box. One that is empty counts as one that holds everything.
    void set(std::size_t index, const BoundingBox& box,
             const ovMaths::Matrix& transformation = ovMaths::Matrix());
    /// Moves the middle of a box, which keeps its size.
    /// @return false, changing nothing, for a box that holds everything and a center that is not finite
    bool setCenter(std::size_t index, const ovMaths::Vector& center);
    /// Copies a box to another index, over what is there.
    void copy(std::size_t from, std::size_t to);
    /// (0, 0, 0) for a box that holds everything.
    ovMaths::Vector getCenter(std::size_t index) const;

    /// Tells of the boxes from begin to end whether they may be seen, as BoundingBox::checkAgainst does.
    /// @param planeCount the first so many of the frustum's planes cut off @param inside gets 1 or 0 for each
    void check(const Frustum& frustum, unsigned int planeCount, std::size_t begin, std::size_t end,
               unsigned char* inside) const;

private:
    static constexpr std::size_t LANES = 8; ///< floats of the widest common vector instructions
    static constexpr std::size_t AXES = 3;

    /// What moves alone keeps its reach, whatever rounding does to its middle.
    struct Bunch {
        float center[AXES][LANES];
        float reach[AXES][LANES]; ///< half the size
    };

    ovMemory::Buffer<Bunch> _bunches;
    std::size_t _count = 0;
};

} // namespace ovGraphics
