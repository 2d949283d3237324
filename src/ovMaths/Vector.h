// Four floats that serve as vectors of two, three and four components.
#pragma once

#include <cmath>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovMaths {

/// Four 32-bit floats. Operations named Vec2 or Vec3 use the first two or three components only.
///
/// Sums inside lengths and dot products are kept in double precision, so that no intermediate overflows.
class OV_API Vector {
public:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 0.0f;

    /// All components zero.
    constexpr Vector() = default;
    constexpr Vector(float xValue, float yValue, float zValue = 0.0f, float wValue = 0.0f)
        : x(xValue)
        , y(yValue)
        , z(zValue)
        , w(wValue) {}

    /// A vector of two components; z and w are 0.
    static constexpr Vector newVec2(float xValue, float yValue) { return {xValue, yValue}; }
    /// A vector of three components; w is 0.
    static constexpr Vector newVec3(float xValue, float yValue, float zValue) {
        return {xValue, yValue, zValue};
    }
    static constexpr Vector newVec4(float xValue, float yValue, float zValue, float wValue) {
        return {xValue, yValue, zValue, wValue};
    }

    float getLengthVec2() const { return _lengthOf(_dot<2>(*this, *this)); }
    float getLengthVec3() const { return _lengthOf(_dot<3>(*this, *this)); }
    float getLengthVec4() const { return _lengthOf(_dot<4>(*this, *this)); }
    float getLengthSquaredVec2() const { return dotVec2(*this, *this); }
    float getLengthSquaredVec3() const { return dotVec3(*this, *this); }
    float getLengthSquaredVec4() const { return dotVec4(*this, *this); }

    float getDistanceVec2(const Vector& other) const { return distanceVec2(*this, other); }
    float getDistanceVec3(const Vector& other) const { return distanceVec3(*this, other); }
    float getDistanceVec4(const Vector& other) const { return distanceVec4(*this, other); }
    float getDistanceSquaredVec2(const Vector& other) const { return distanceSquaredVec2(*this, other); }
    float getDistanceSquaredVec3(const Vector& other) const { return distanceSquaredVec3(*this, other); }
    float getDistanceSquaredVec4(const Vector& other) const { return distanceSquaredVec4(*this, other); }

    /// Scales the components in use to length one; the others stay. When their length is zero or not finite,
    /// the components in use become zero, so that no NaN arises here.
    void normalizeVec2() { _normalize<2>(); }
    void normalizeVec3() { _normalize<3>(); }
    void normalizeVec4() { _normalize<4>(); }
    /// Copies that are normalised as normalizeVec2() and its siblings do.
    Vector getNormalizedVec2() const { return _getNormalized<2>(); }
    Vector getNormalizedVec3() const { return _getNormalized<3>(); }
    Vector getNormalizedVec4() const { return _getNormalized<4>(); }

    float dotProductVec2(const Vector& other) const { return dotVec2(*this, other); }
    float dotProductVec3(const Vector& other) const { return dotVec3(*this, other); }
    float dotProductVec4(const Vector& other) const { return dotVec4(*this, other); }

    /// x, y and z become the cross product first x second (so that x-axis x y-axis = z-axis); w stays. Either
    /// argument may be this vector.
    void setAsCrossVec3(const Vector& first, const Vector& second) {
        const Vector cross = crossVec3(first, second);
        *this = Vector(cross.x, cross.y, cross.z, w);
    }
    /// The cross product of this vector and the other; its w is 0.
    Vector getCrossVec3(const Vector& other) const { return crossVec3(*this, other); }

    static float distanceVec2(const Vector& first, const Vector& second) {
        return _lengthOf(_distanceSquared<2>(first, second));
    }
    static float distanceVec3(const Vector& first, const Vector& second) {
        return _lengthOf(_distanceSquared<3>(first, second));
    }
    static float distanceVec4(const Vector& first, const Vector& second) {
        return _lengthOf(_distanceSquared<4>(first, second));
    }
    static float distanceSquaredVec2(const Vector& first, const Vector& second) {
        return float(_distanceSquared<2>(first, second));
    }
    static float distanceSquaredVec3(const Vector& first, const Vector& second) {
        return float(_distanceSquared<3>(first, second));
    }
    static float distanceSquaredVec4(const Vector& first, const Vector& second) {
        return float(_distanceSquared<4>(first, second));
    }
    static float dotVec2(const Vector& first, const Vector& second) { return float(_dot<2>(first, second)); }
    static float dotVec3(const Vector& first, const Vector& second) { return float(_dot<3>(first, second)); }
    static float dotVec4(const Vector& first, const Vector& second) { return float(_dot<4>(first, second)); }
    /// The cross product first x second; its w is 0.
    static Vector crossVec3(const Vector& first, const Vector& second) {
        return {float(double(first.y) * second.z - double(first.z) * second.y),
                float(double(first.z) * second.x - double(first.x) * second.z),
                float(double(first.x) * second.y - double(first.y) * second.x)};
    }

    /// Operators work component by component on all four. Division follows IEEE: by zero it gives an infinity
    /// or NaN in that component. Equality is exact.
    constexpr Vector operator+(const Vector& other) const {
        return {x + other.x, y + other.y, z + other.z, w + other.w};
    }
    constexpr Vector operator-(const Vector& other) const {
        return {x - other.x, y - other.y, z - other.z, w - other.w};
    }
    constexpr Vector operator*(const Vector& other) const {
        return {x * other.x, y * other.y, z * other.z, w * other.w};
    }
    constexpr Vector operator/(const Vector& other) const {
        return {x / other.x, y / other.y, z / other.z, w / other.w};
    }
    constexpr Vector operator*(float factor) const {
        return {x * factor, y * factor, z * factor, w * factor};
    }
    constexpr Vector operator/(float divisor) const {
        return {x / divisor, y / divisor, z / divisor, w / divisor};
    }
    constexpr Vector operator-() const { return {-x, -y, -z, -w}; }
    constexpr bool operator==(const Vector& other) const = default;

    /// "Vec(x, y, z, w)", always four numbers with six decimals each and a point, whatever the locale.
    ovMemory::String toString() const;

    /// "Vec(x, y, z, w)" with the fewest digits that fromString() reads back as the same bits, and a point,
    /// whatever the locale: 0.1, 1e-07. Files hold this form. Numbers that are not finite become "inf" and
    /// "nan", which fromString() refuses.
    ovMemory::String toExactString() const;

    /// Reads what toString() and toExactString() write: "Vec(" four finite numbers separated by commas ")",
    /// with optional spaces around the numbers. False, with this vector unchanged, for any other text.
    bool fromString(ovMemory::StringView text);

private:
    static float _lengthOf(double lengthSquared) { return float(std::sqrt(lengthSquared)); }

    template <int COUNT>
    static double _dot(const Vector& first, const Vector& second) {
        double sum = double(first.x) * second.x + double(first.y) * second.y;
        if constexpr (COUNT > 2)
            sum += double(first.z) * second.z;
        if constexpr (COUNT > 3)
            sum += double(first.w) * second.w;
        return sum;
    }

    template <int COUNT>
    static double _distanceSquared(const Vector& first, const Vector& second) {
        const double dx = double(first.x) - second.x;
        const double dy = double(first.y) - second.y;
        double sum = dx * dx + dy * dy;
        if constexpr (COUNT > 2)
            sum += (double(first.z) - second.z) * (double(first.z) - second.z);
        if constexpr (COUNT > 3)
            sum += (double(first.w) - second.w) * (double(first.w) - second.w);
        return sum;
    }

    template <int COUNT>
    void _normalize() {
        const double length = std::sqrt(_dot<COUNT>(*this, *this));
        const bool usable = length > 0.0 && std::isfinite(length);
        const auto scaled = [&](float value) { return usable ? float(value / length) : 0.0f; };
        x = scaled(x);
        y = scaled(y);
        if constexpr (COUNT > 2)
            z = scaled(z);
        if constexpr (COUNT > 3)
            w = scaled(w);
    }

    template <int COUNT>
    Vector _getNormalized() const {
        Vector result = *this;
        result._normalize<COUNT>();
        return result;
    }
};

static_assert(sizeof(Vector) == 4 * sizeof(float), "vectors are uploaded as four floats");

constexpr Vector operator*(float factor, const Vector& vector) {
    return vector * factor;
}

} // namespace ovMaths
