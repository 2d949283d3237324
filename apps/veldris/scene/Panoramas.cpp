#include <veldris/scene/Panoramas.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veldris {

using ovMaths::Vector;

namespace {

/// A rectangular lamp on a plane in a direction from the eye.
struct Lamp {
    Vector towards; ///< unit length
    Vector across;  ///< unit length, at right angles
    float halfWidth;
    float halfHeight;
    Vector radiance;
};

/// How much of a lamp is seen along a direction: 1 inside, falling to 0 over its soft edge.
float lampCoverage(const Lamp& lamp, const Vector& direction) {
    constexpr float SOFTNESS = 0.04f;
    const float distance = direction.dotProductVec3(lamp.towards);
    if (distance <= 0.0f)
        return 0.0f;
    const Vector up = Vector::crossVec3(lamp.towards, lamp.across);
    const float x = std::abs(direction.dotProductVec3(lamp.across)) / distance;
    const float y = std::abs(direction.dotProductVec3(up)) / distance;
    const float inside = std::min(lamp.halfWidth - x, lamp.halfHeight - y);
    // A hard edge would show the texels of the panorama in every mirror.
    return std::clamp(0.5f + inside / SOFTNESS, 0.0f, 1.0f);
}

} // namespace

ovImages::Image drawPanorama(unsigned int width,
                             const std::function<Vector(const Vector& direction)>& radiance) {
    const unsigned int height = width / 2;
    ovImages::Image image(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT,
                          ovImages::COLOR_ENCODING::LINEAR);
    constexpr float PI = std::numbers::pi_v<float>;
    for (unsigned int row = 0; row < height; ++row) {
        const float latitude = PI * (0.5f - (static_cast<float>(row) + 0.5f) / static_cast<float>(height));
        for (unsigned int column = 0; column < width; ++column) {
            const float longitude =
                2.0f * PI * ((static_cast<float>(column) + 0.5f) / static_cast<float>(width) - 0.5f);
            const Vector color = radiance({std::cos(longitude) * std::cos(latitude), std::sin(latitude),
                                           std::sin(longitude) * std::cos(latitude)});
            image.setComponent(column, row, 0, color.x);
            image.setComponent(column, row, 1, color.y);
            image.setComponent(column, row, 2, color.z);
            image.setComponent(column, row, 3, 1.0f);
        }
    }
    return image;
}

Vector studioRadiance(const Vector& direction) {
    const Lamp lamps[] = {
        {Vector(-0.8f, 0.35f, -0.5f).getNormalizedVec3(),
         Vector(0.53f, 0.0f, -0.85f).getNormalizedVec3(),
         0.45f,
         0.7f,
         {5.5f, 5.0f, 4.4f}},
        {Vector(0.9f, 0.2f, -0.4f).getNormalizedVec3(),
         Vector(0.4f, 0.0f, 0.9f).getNormalizedVec3(),
         0.25f,
         0.9f,
         {1.6f, 2.2f, 3.2f}},
        {{0.0f, 1.0f, 0.0f}, {1.0f, 0.0f, 0.0f}, 0.6f, 0.3f, {3.0f, 3.0f, 3.0f}},
    };
    const float floorAndWalls = 0.5f + 0.5f * direction.y;
    Vector radiance =
        Vector(0.05f, 0.05f, 0.06f) * (1.0f - floorAndWalls) + Vector(0.14f, 0.14f, 0.15f) * floorAndWalls;
    for (const Lamp& lamp : lamps)
        radiance = radiance + lamp.radiance * lampCoverage(lamp, direction);
    return radiance;
}

Vector duskRadiance(const Vector& direction) {
    const Vector towardsGlow = Vector(-0.6f, 0.05f, 0.8f).getNormalizedVec3();
    if (direction.y < 0.0f)
        return Vector(0.05f, 0.05f, 0.06f) * std::exp(4.0f * direction.y) + Vector(0.02f, 0.02f, 0.02f);
    const float glow = std::pow(std::max(0.0f, direction.dotProductVec3(towardsGlow)), 6.0f);
    const float low = std::exp(-6.0f * direction.y);
    return Vector(0.06f, 0.09f, 0.22f) + Vector(0.12f, 0.08f, 0.10f) * low +
           Vector(3.2f, 1.1f, 0.35f) * (glow * (0.25f + 0.75f * low));
}

} // namespace veldris
