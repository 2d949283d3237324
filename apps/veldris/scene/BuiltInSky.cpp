#include <veldris/scene/BuiltInSky.h>

#include <algorithm>
#include <cmath>
#include <numbers>

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
    const unsigned int height = width / 2;
    ovImages::Image image(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT,
                          ovImages::COLOUR_ENCODING::LINEAR);
    constexpr float PI = std::numbers::pi_v<float>;
    for (unsigned int row = 0; row < height; ++row) {
        const float latitude = PI * (0.5f - (static_cast<float>(row) + 0.5f) / static_cast<float>(height));
        for (unsigned int column = 0; column < width; ++column) {
            const float longitude =
                2.0f * PI * ((static_cast<float>(column) + 0.5f) / static_cast<float>(width) - 0.5f);
            const Vector direction(std::cos(longitude) * std::cos(latitude), std::sin(latitude),
                                   std::sin(longitude) * std::cos(latitude));
            const Vector radiance = skyRadiance(direction, towardsSun);
            image.setComponent(column, row, 0, radiance.x);
            image.setComponent(column, row, 1, radiance.y);
            image.setComponent(column, row, 2, radiance.z);
            image.setComponent(column, row, 3, 1.0f);
        }
    }
    return image;
}

} // namespace veldris
