#include <veldris/sky/SkyGround.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ovVeldris/environment/light/EnvironmentTexels.h>

namespace veldris {

using ovMaths::Vector;

namespace {

constexpr unsigned int ROWS = 4096;      // 0.044 degrees each
constexpr double PLANET_RADIUS = 6360e3; // metres, as of the atmosphere
constexpr double LOWEST_HEIGHT = 1.0;    // metres, likewise

} // namespace

ovImages::Image drawGroundPanorama(const Vector& radiance, double eyeHeight) {
    ovImages::Image panorama(1, ROWS, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    // A little above the horizon: the atmosphere finds it in floats, and where it sees ground sooner, black
    // would show. What is seen of the ground beyond is next to nothing, behind all of the air.
    constexpr double EXTRA = 1.5 * std::numbers::pi / ROWS;
    const double horizon =
        EXTRA - std::acos(PLANET_RADIUS / (PLANET_RADIUS + std::max(LOWEST_HEIGHT, eyeHeight)));
    for (unsigned int row = 0; row < ROWS; ++row) {
        const double latitude = std::numbers::pi * (0.5 - (row + 0.5) / ROWS);
        const Vector color = latitude < horizon ? radiance : Vector();
        panorama.setComponent(0, row, 0, color.x);
        panorama.setComponent(0, row, 1, color.y);
        panorama.setComponent(0, row, 2, color.z);
        panorama.setComponent(0, row, 3, 1.0f);
    }
    return panorama;
}

Vector levelIrradiance(const ovImages::ImageView& faces) {
    constexpr bool IS_CUBE = true;
    const ovVeldris::EnvironmentTexels texels(faces, IS_CUBE);
    double sum[3] = {};
    for (unsigned int row = 0; row < texels.getHeight(); ++row) {
        for (unsigned int column = 0; column < texels.getWidth(); ++column) {
            const double weight = texels.getDirection(column, row)[1] * texels.getSolidAngle(column, row);
            const float* light = texels.getLight(column, row);
            for (unsigned int i = 0; i < 3 && weight > 0.0; ++i)
                sum[i] += weight * static_cast<double>(light[i]);
        }
    }
    return {static_cast<float>(sum[0]), static_cast<float>(sum[1]), static_cast<float>(sum[2])};
}

} // namespace veldris
