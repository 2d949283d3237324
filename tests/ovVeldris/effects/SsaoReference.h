// Ambient occlusion in screen space once more, in double precision, and scenes whose every point is known.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <ovGraphics/resources/Camera.h>
#include <support/FloatPicture.h>

namespace ssaoReference {

using Point = std::array<double, 3>;

inline Point added(const Point& a, const Point& b, double factor = 1.0) {
    return {a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
}
inline Point scaled(const Point& a, double factor) {
    return {a[0] * factor, a[1] * factor, a[2] * factor};
}
inline double dot(const Point& a, const Point& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Point cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline Point normalized(const Point& a) {
    return scaled(a, 1.0 / std::sqrt(dot(a, a)));
}

constexpr std::array<Point, 16> KERNEL = {{
    {0.92564, 0.11612, 0.86813},
    {0.81392, 0.40855, 0.02675},
    {0.28794, -0.56523, -0.92131},
    {-0.75754, 0.45838, -0.05279},
    {0.47536, -0.82889, 0.45496},
    {-0.26338, 0.85357, -0.90751},
    {0.38205, 0.32105, -0.68946},
    {-0.90984, 0.58611, 0.16960},
    {-0.18035, 0.33897, -0.29953},
    {-0.40315, -0.67820, -0.56017},
    {0.36937, -0.81180, -0.48061},
    {0.67736, -0.91273, 0.87091},
    {0.91413, 0.39406, 0.90515},
    {-0.00458, 0.50195, 0.53110},
    {0.83173, -0.98079, -0.08618},
    {-0.85342, -0.98334, -0.20135},
}};

struct Settings {
    double radius = 0.05;
    double maxDistance = 1.0;
    double strength = 0.8;
    double bias = 0.00001;
    unsigned int samples = 16;
};

/// The view of a camera with its pixels.
struct View {
    const ovGraphics::Camera* camera;
    unsigned int width;
    unsigned int height;

    /// View-space direction with z = 1 through a place of the screen.
    Point directionAt(double u, double v) const {
        const auto corners = camera->getCornersView();
        const Point topLeft = {corners[0].x, corners[0].y, corners[0].z};
        const Point bottomRight = {corners[3].x, corners[3].y, corners[3].z};
        return {topLeft[0] + u * (bottomRight[0] - topLeft[0]),
                topLeft[1] + v * (bottomRight[1] - topLeft[1]), 1.0};
    }
    Point directionOf(unsigned int x, unsigned int y) const {
        return directionAt((x + 0.5) / width, (y + 0.5) / height);
    }
    /// The place of the screen where a view-space point appears.
    std::array<double, 2> placeOf(const Point& p) const {
        const Point corner = directionAt(1.0, 1.0);
        return {0.5 + 0.5 * p[0] / p[2] / corner[0], 0.5 + 0.5 * p[1] / p[2] / corner[1]};
    }
};

/// What is seen at a place of the screen: view z, 0 for nothing. Whether a hair's breadth beside the place
/// something else is seen goes to isSure.
using Depth = std::function<double(double u, double v, bool& isSure)>;

/// The texel of a grid that a place reads, by its first channel that counts; outside is a border of zeros.
inline Depth texelDepth(const FloatPicture& picture, std::size_t channel,
                        const std::function<double(double)>& toZ) {
    return [&picture, channel, toZ](double u, double v, bool& isSure) {
        const double x = u * picture.width;
        const double y = v * picture.height;
        constexpr double HAIR = 2e-3; // of a texel
        isSure = isSure && std::abs(x - std::round(x)) > HAIR && std::abs(y - std::round(y)) > HAIR;
        const bool isInside = x >= 0.0 && y >= 0.0 && x < picture.width && y < picture.height;
        return toZ(isInside ? double(picture.at(unsigned(x), unsigned(y))[channel]) : 0.0);
    };
}

/// One direction of the kernel in the half space of a normal.
inline Point kernelDirection(unsigned int i, const Point& normal) {
    const Point direction = normalized(KERNEL[i]);
    const double cosine = dot(direction, normalized(normal));
    const double side = cosine > 0.0 ? 1.0 : cosine < 0.0 ? -1.0 : 0.0;
    const double pull = std::clamp(1.5 - std::exp(cosine * 0.4), 0.0, 1.0);
    return added(scaled(direction, side * (1.0 - pull)), normal, pull);
}

/// The open fraction at a point. @param isSure becomes false when a rounding could decide a sample
inline double openFraction(const Point& position, const Point& normal, const View& view, const Depth& depth,
                           const Settings& settings, bool& isSure) {
    unsigned int occluded = 0;
    for (unsigned int i = 0; i < settings.samples; ++i) {
        const Point place = added(position, kernelDirection(i, normal), settings.radius);
        const auto [u, v] = view.placeOf(place);
        const double seen = depth(u, v, isSure);
        if (seen == 0.0)
            continue;
        const double inFront = std::max(0.0, place[2] - seen);
        for (const double limit : {settings.bias, settings.maxDistance})
            isSure = isSure && std::abs(place[2] - seen - limit) > 2e-6 * std::abs(place[2]);
        if (inFront > settings.bias && inFront < settings.maxDistance)
            ++occluded;
    }
    const double open = double(settings.samples - occluded) / settings.samples;
    return settings.strength == 0.0 ? 1.0 : std::pow(open, settings.strength);
}

/// The normal that neighbours in the pixel's square of two by two give, which has the rows and columns of the
/// pixel: nothing where they are too far apart.
inline std::optional<Point>
normalFromNeighbors(const std::function<Point(unsigned int, unsigned int)>& position, unsigned int x,
                    unsigned int y, double maxDistance) {
    const Point dX = added(position(x | 1u, y), position(x & ~1u, y), -1.0);
    const Point dY = added(position(x, y | 1u), position(x, y & ~1u), -1.0);
    if (dot(dX, dX) > maxDistance * maxDistance || dot(dY, dY) > maxDistance * maxDistance)
        return {};
    return cross(normalized(dX), normalized(dY));
}

/// View z of the nearest thing along a direction with z = 1, and its normal.
struct Hit {
    double z = 0.0;
    Point normal = {};
};
using Scene = std::function<Hit(const Point& direction)>;

/// A plane through a point, seen from its front.
inline Hit hitPlane(const Point& direction, const Point& point, const Point& normal) {
    const double t = dot(point, normal) / dot(direction, normal);
    return t > 0.0 ? Hit{t, normal} : Hit{};
}

inline Hit nearer(const Hit& a, const Hit& b) {
    if (a.z == 0.0 || b.z == 0.0)
        return a.z == 0.0 ? b : a;
    return a.z < b.z ? a : b;
}

inline Hit hitSphere(const Point& direction, const Point& center, double radius) {
    const double a = dot(direction, direction);
    const double b = dot(direction, center);
    const double root = b * b - a * (dot(center, center) - radius * radius);
    if (root < 0.0)
        return {};
    const double t = (b - std::sqrt(root)) / a;
    return {t, normalized(added(scaled(direction, t), center, -1.0))};
}

} // namespace ssaoReference
