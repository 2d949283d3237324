#include <veldris/demo/DemoScene.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <veldris/scene/BuiltInSky.h>

namespace veldris {

// No random numbers: the picture must have the same bits on every run, as it is the input of comparisons.
namespace {

struct Vec {
    double x = 0.0, y = 0.0, z = 0.0;

    Vec operator+(const Vec& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Vec operator-(const Vec& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec operator*(const Vec& o) const { return {x * o.x, y * o.y, z * o.z}; }
    Vec operator*(double s) const { return {x * s, y * s, z * s}; }
};

double dot(const Vec& a, const Vec& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vec normalised(const Vec& v) {
    return v * (1.0 / std::sqrt(dot(v, v)));
}
Vec mirrored(const Vec& direction, const Vec& normal) {
    return direction - normal * (2.0 * dot(direction, normal));
}
Vec mixed(const Vec& a, const Vec& b, double t) {
    return a * (1.0 - t) + b * t;
}

struct Sphere {
    Vec centre;
    double radius;
    Vec albedo;
    Vec mirror;   ///< share of the light that is mirrored
    Vec emission; ///< radiance
};

struct Hit {
    double distance = std::numeric_limits<double>::infinity();
    Vec normal;
    Vec albedo;
    Vec mirror;
    Vec emission;
};

// Distances in metres, radiance in units of a matte white in the sun.
const Vec SUN_DIRECTION = normalised({-0.55, 0.32, 0.77});
constexpr double SUN_COSINE = 0.99985; // about a degree of radius: large enough for a few pixels
constexpr Vec SUN_RADIANCE = {22000.0, 17500.0, 12000.0};
constexpr Vec SUN_IRRADIANCE = {3.1, 2.5, 1.8};
constexpr Vec EYE = {0.0, 1.25, -5.2};
constexpr double VIEW_HEIGHT = 1.05; // of the picture plane one metre before the eye
constexpr int MAX_MIRRORINGS = 3;
// A mirrored ray starts on a sphere; without this, rounding would let it hit the same place again.
constexpr double SELF_HIT = 1e-4;

const std::array<Sphere, 5> SPHERES = {{
    {{-2.3, 0.7, 0.6}, 0.7, {0.75, 0.75, 0.75}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}},
    {{-0.75, 0.7, -0.3}, 0.7, {0.70, 0.06, 0.05}, {0.05, 0.05, 0.05}, {0.0, 0.0, 0.0}},
    {{0.85, 0.7, 0.5}, 0.7, {0.0, 0.0, 0.0}, {0.95, 0.93, 0.88}, {0.0, 0.0, 0.0}},
    {{2.35, 0.7, -0.1}, 0.7, {0.10, 0.06, 0.01}, {0.90, 0.60, 0.20}, {0.0, 0.0, 0.0}},
    {{0.15, 0.25, -1.6}, 0.25, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {2.0, 9.0, 14.0}},
}};

/// The built-in sky with the sun in it.
Vec radianceOfSky(const Vec& direction) {
    if (dot(direction, SUN_DIRECTION) > SUN_COSINE)
        return SUN_RADIANCE;
    const auto single = [](const Vec& v) {
        return ovMaths::Vector(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
    };
    const ovMaths::Vector sky = skyRadiance(single(direction), single(SUN_DIRECTION));
    return {sky.x, sky.y, sky.z};
}

std::optional<double> hitSphere(const Sphere& sphere, const Vec& origin, const Vec& direction) {
    const Vec offset = origin - sphere.centre;
    const double b = dot(offset, direction);
    const double discriminant = b * b - dot(offset, offset) + sphere.radius * sphere.radius;
    if (discriminant < 0.0)
        return std::nullopt;
    // The nearer hit only: no ray starts within a sphere.
    const double distance = -b - std::sqrt(discriminant);
    return distance > SELF_HIT ? std::optional(distance) : std::nullopt;
}

Vec groundAlbedo(const Vec& point) {
    const auto tile = static_cast<long>(std::floor(point.x)) + static_cast<long>(std::floor(point.z));
    return tile % 2 == 0 ? Vec{0.58, 0.55, 0.50} : Vec{0.16, 0.15, 0.14};
}

Hit findHit(const Vec& origin, const Vec& direction) {
    Hit hit;
    // Left out are rays that never meet the ground, and those that meet it beyond ten kilometres.
    if (direction.y < -SELF_HIT) {
        hit.distance = -origin.y / direction.y;
        hit.normal = {0.0, 1.0, 0.0};
        hit.albedo = groundAlbedo(origin + direction * hit.distance);
    }
    for (const Sphere& sphere : SPHERES) {
        const std::optional<double> distance = hitSphere(sphere, origin, direction);
        if (!distance || *distance >= hit.distance)
            continue;
        const Vec point = origin + direction * *distance;
        hit = {*distance, normalised(point - sphere.centre), sphere.albedo, sphere.mirror, sphere.emission};
    }
    return hit;
}

bool isInShadow(const Vec& point) {
    return std::any_of(SPHERES.begin(), SPHERES.end(), [&](const Sphere& sphere) {
        return hitSphere(sphere, point, SUN_DIRECTION).has_value();
    });
}

/// Matte light from sun and sky: Lambert's law, the sky as two hemispheres.
Vec matteRadiance(const Hit& hit, const Vec& point) {
    const double towardsSun = std::max(0.0, dot(hit.normal, SUN_DIRECTION));
    const Vec sun = towardsSun > 0.0 && !isInShadow(point) ? SUN_IRRADIANCE * towardsSun : Vec{};
    const Vec sky = mixed(Vec{0.18, 0.16, 0.14}, Vec{0.36, 0.46, 0.72}, 0.5 + 0.5 * hit.normal.y);
    return hit.albedo * (sun + sky) * 0.32;
}

Vec radianceAlong(Vec origin, Vec direction) {
    Vec radiance;
    Vec share = {1.0, 1.0, 1.0};
    for (int bounce = 0; bounce <= MAX_MIRRORINGS; ++bounce) {
        const Hit hit = findHit(origin, direction);
        if (!std::isfinite(hit.distance))
            return radiance + share * radianceOfSky(direction);
        const Vec point = origin + direction * hit.distance;
        radiance = radiance + share * (hit.emission + matteRadiance(hit, point));
        share = share * hit.mirror;
        // A matte surface mirrors nothing, and the ray ends at it.
        if (dot(share, share) == 0.0)
            break;
        origin = point;
        direction = mirrored(direction, hit.normal);
    }
    return radiance;
}

/// The chart: eight hues across, sixteen stops from left to right.
Vec chartRadiance(double u, double v) {
    constexpr std::array<Vec, 8> HUES = {{{1.0, 1.0, 1.0},
                                          {1.0, 0.02, 0.02},
                                          {1.0, 0.45, 0.02},
                                          {0.9, 0.9, 0.02},
                                          {0.02, 0.9, 0.1},
                                          {0.02, 0.8, 0.9},
                                          {0.05, 0.1, 1.0},
                                          {0.8, 0.05, 0.9}}};
    constexpr double STOPS = 16.0;
    constexpr double DARKEST = -8.0;
    const auto hue = std::min<std::size_t>(static_cast<std::size_t>(v * HUES.size()), HUES.size() - 1);
    return HUES[hue] * std::exp2(DARKEST + std::floor(u * STOPS * 2.0) / 2.0);
}

/// @param u, v place in the picture, (0, 0) top left to (1, 1) bottom right
Vec pictureRadiance(double u, double v, double aspect) {
    constexpr double CHART_TOP = 0.86;
    if (v >= CHART_TOP)
        return chartRadiance(u, (v - CHART_TOP) / (1.0 - CHART_TOP));
    const double x = (u - 0.5) * aspect * VIEW_HEIGHT;
    const double y = (0.46 - v) * VIEW_HEIGHT;
    return radianceAlong(EYE, normalised({x, y, 1.0}));
}

} // namespace

ovImages::Image drawDemoScene(unsigned int width, unsigned int height) {
    ovImages::Image image(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT,
                          ovImages::COLOR_ENCODING::LINEAR);
    constexpr int SAMPLES = 3; // a side, of every pixel
    const double aspect = static_cast<double>(width) / height;
    for (unsigned int row = 0; row < height; ++row) {
        for (unsigned int column = 0; column < width; ++column) {
            Vec sum;
            for (int sample = 0; sample < SAMPLES * SAMPLES; ++sample) {
                const int across = sample % SAMPLES;
                const int down = sample / SAMPLES;
                const double u = (column + (across + 0.5) / SAMPLES) / width;
                const double v = (row + (down + 0.5) / SAMPLES) / height;
                sum = sum + pictureRadiance(u, v, aspect);
            }
            const Vec mean = sum * (1.0 / (SAMPLES * SAMPLES));
            image.setComponent(column, row, 0, static_cast<float>(mean.x));
            image.setComponent(column, row, 1, static_cast<float>(mean.y));
            image.setComponent(column, row, 2, static_cast<float>(mean.z));
            image.setComponent(column, row, 3, 1.0f);
        }
    }
    return image;
}

} // namespace veldris
