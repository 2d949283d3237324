#include <algorithm>
#include <cmath>
#include <ovVeldris/effects/ToneMappingHablesCurve.h>

namespace ovVeldris {

namespace {

/// Below this the ends of the segments count as black, whose logarithm does not exist.
constexpr float MIN_Y = 1e-5f;

/// A segment y = offsetY + scale exp(lnA + B ln((x - offsetX) scale)), scale = 1 or -1.
struct Segment {
    float offsetX = 0.0f;
    float offsetY = 0.0f;
    float scale = 1.0f;
    float lnA = 0.0f;
    float B = 0.0f;
};

/// The ends of the linear part, normalised to a white of x = 1, and where the shoulder overshoots to.
struct ControlPoints {
    float invW = 0.0f;
    float x0 = 0.0f, y0 = 0.0f;
    float x1 = 0.0f, y1 = 0.0f;
    float overshootX = 0.0f, overshootY = 0.0f;
};

// The shader evaluates three segments a pixel; everything that depends on the settings alone is computed
// here.
ControlPoints computeControlPoints(const ToneMappingHablesCurveDescriptor& d) {
    const float x0 = d.toeLength * 0.5f;
    const float y0 = (1.0f - d.toeStrength) * x0;
    const float remainingY = 1.0f - y0;
    const float yOffset = (1.0f - d.shoulderLength) * remainingY;
    const float W = (x0 + remainingY) + (std::pow(2.0f, d.shoulderStrength) - 1.0f);

    ControlPoints points;
    points.invW = 1.0f / W;
    points.x0 = x0 / W;
    points.y0 = y0;
    points.x1 = (x0 + yOffset) / W;
    points.y1 = y0 + yOffset;
    points.overshootX = 2.0f * W * d.shoulderAngle * d.shoulderStrength / W;
    points.overshootY = 0.5f * d.shoulderAngle * d.shoulderStrength;
    return points;
}

/// The power curve through (0, 0) and (x, y) with the slope m at its end.
Segment powerThrough(float x, float y, float m) {
    Segment segment;
    segment.B = m * x / y;
    segment.lnA = std::log(y) - segment.B * std::log(x);
    return segment;
}

float evaluate(const Segment& segment, float x) {
    const float t = (x - segment.offsetX) * segment.scale;
    const float y = t > 0.0f ? std::exp(segment.lnA + segment.B * std::log(t)) : 0.0f;
    return segment.offsetY + y * segment.scale;
}

} // namespace

ToneMappingHablesCurve computeToneMappingHablesCurve(const ToneMappingHablesCurveDescriptor& descriptor) {
    const ControlPoints points = computeControlPoints(descriptor);
    const float gamma = descriptor.gamma;

    // The line y = m x + b and, with gamma applied, its slopes at both ends.
    // A shoulder of full length leaves no straight part.
    const float width = points.x1 - points.x0;
    const float m = width == 0.0f ? 1.0f : (points.y1 - points.y0) / width;
    const float b = points.y0 - m * points.x0;
    const auto slopeAt = [&](float x) { return gamma * m * std::pow(m * x + b, gamma - 1.0f); };

    Segment linear;
    linear.offsetX = -b / m;
    linear.lnA = gamma * std::log(m);
    linear.B = gamma;

    const float y0 = std::max(MIN_Y, std::pow(points.y0, gamma));
    const float y1 = std::max(MIN_Y, std::pow(points.y1, gamma));
    const Segment toe = powerThrough(points.x0, y0, slopeAt(points.x0));

    // Mirrored: it leaves the line at (x1, y1) and ends in its offset with slope 0.
    const float offsetX = 1.0f + points.overshootX;
    const float offsetY = std::pow(1.0f + points.overshootY, gamma);
    Segment shoulder = powerThrough(offsetX - points.x1, offsetY - y1, slopeAt(points.x1));
    shoulder.offsetX = offsetX;
    shoulder.offsetY = offsetY;
    shoulder.scale = -1.0f;

    const float invScale = 1.0f / evaluate(shoulder, 1.0f);
    linear.offsetX *= invScale;
    shoulder.offsetX *= invScale;
    shoulder.offsetY *= invScale;

    const auto offsetScale = [](const Segment& s) {
        return ovMaths::Vector(s.offsetX, s.offsetY, s.scale, s.scale);
    };
    const auto power = [](const Segment& s) { return ovMaths::Vector(s.lnA, s.B); };
    return {ovMaths::Vector(points.invW, points.x0, points.x1),
            offsetScale(toe),
            power(toe),
            offsetScale(linear),
            power(linear),
            offsetScale(shoulder),
            power(shoulder)};
}

} // namespace ovVeldris
