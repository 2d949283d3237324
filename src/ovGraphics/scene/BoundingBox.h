// Boxes along the axes, for culling and framing.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {

class Frustum;

/// A box along the axes. A new one is empty: it holds no point, and nothing intersects it.
class OV_API BoundingBox {
public:
    BoundingBox() = default;

    /// A cube around a centre. @param side of the cube, metres, at least 0
    static BoundingBox newCube(const ovMaths::Vector& center, float side);
    /// A box around a centre. @param size of the box along each axis, metres, at least 0
    static BoundingBox newBox(const ovMaths::Vector& center, const ovMaths::Vector& size);

    /// Grows the box to hold a point; a point with a component that is not finite is ignored.
    void add(const ovMaths::Vector& point);
    /// Grows the box to hold another; an empty one changes nothing.
    void add(const BoundingBox& other);

    bool isEmpty() const { return _minimum.x > _maximum.x; }
    /// Zero for an empty box.
    ovMaths::Vector getCenter() const;
    /// Along each axis; zero for an empty box.
    ovMaths::Vector getSize() const;
    const ovMaths::Vector& getMinimum() const { return _minimum; }
    const ovMaths::Vector& getMaximum() const { return _maximum; }

    /// The smallest box along the axes that holds this one after a transformation (Arvo, Transforming
    /// Axis-Aligned Bounding Boxes, Graphics Gems, 1990); empty when that one is not finite.
    BoundingBox getTransformed(const ovMaths::Matrix& transformation) const;
    /// The same box by its middle and half its size. @return false, changing nothing, where that is empty
    bool getTransformed(const ovMaths::Matrix& transformation, ovMaths::Vector& center,
                        ovMaths::Vector& reach) const;

    /// False only when the whole box lies outside one plane of the frustum, so that some boxes near its
    /// corners count as inside although they are not. An empty box is outside.
    bool checkAgainst(const Frustum& frustum) const;

    bool operator==(const BoundingBox&) const = default;

private:
    ovMaths::Vector _minimum{3.402823466e+38f, 3.402823466e+38f, 3.402823466e+38f};
    ovMaths::Vector _maximum{-3.402823466e+38f, -3.402823466e+38f, -3.402823466e+38f};
};

} // namespace ovGraphics
