#include <veldris/scene/BuiltInSky.h>

#include <algorithm>
#include <cmath>
#include <veldris/scene/Panoramas.h>

namespace veldris {

using ovMaths::Vector;

namespace {

constexpr Vector ZENITH{0.16f, 0.34f, 0.85f};
constexpr Vector HORIZON{1.05f, 0.80f, 0.58f};
constexpr Vector GROUND{0.22f, 0.20f, 0.18f};
constexpr Vector NARROW_GLOW{9.0f, 5.5f, 2.6f}; // around the sun
constexpr Vector WIDE_GLOW{0.9f, 0.55f, 0.3f};
constexpr float NARROW_GLOW_FALLOFF = 180.0f; // powers of the cosine
constexpr float WIDE_GLOW_FALLOFF = 9.0f;
constexpr float HORIZON_FALLOFF = 0.45f; // the smaller, the sooner the zenith's colour is reached
constexpr float GROUND_HAZE = 12.0f;     // the larger, the thinner the haze between ground and sky

Vector mixed(const Vector& a, const Vector& b, float weight) {
    return a * (1.0f - weight) + b * weight;
}

} // namespace

Vector skyRadiance(const Vector& direction, const Vector& towardsSun) {
    const Vector above =
        mixed(HORIZON, ZENITH, std::pow(std::clamp(direction.y, 0.0f, 1.0f), HORIZON_FALLOFF));
    if (direction.y < 0.0f)
        return mixed(GROUND, HORIZON, std::exp(GROUND_HAZE * direction.y));
    const float cosine = std::max(0.0f, direction.dotProductVec3(towardsSun));
    return above + NARROW_GLOW * std::pow(cosine, NARROW_GLOW_FALLOFF) +
           WIDE_GLOW * std::pow(cosine, WIDE_GLOW_FALLOFF);
}

ovImages::Image drawSkyPanorama(unsigned int width, const Vector& towardsSun) {
    return drawPanorama(width, [&](const Vector& direction) { return skyRadiance(direction, towardsSun); });
}

} // namespace veldris
