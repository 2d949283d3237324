#include <ovVeldris/effects/atmosphere/SunLight.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

namespace ovVeldris {

using ovMaths::Vector;

namespace {

// Kilometres, as of the effect's model.
constexpr double GROUND_RADIUS = 6360.0;
constexpr double AIR_RADIUS = 6460.0;
constexpr double AIR_SCALE_HEIGHT = 8.0;
constexpr double HAZE_SCALE_HEIGHT = 1.2;
constexpr double OZONE_HEIGHT = 25.0;
constexpr double OZONE_HALF_WIDTH = 15.0;
constexpr double LOWEST_EYE = 0.001;

/// The lengths in kilometres of air, haze and ozone as dense as at their densest.
using Columns = std::array<double, 3>;

/// Along a ray from an eye. @param radius its distance from the middle of the planet
Columns columnsAlong(const AtmosphereEffect& air, double radius, double sine) {
    // The middle of each step stands for it: less than a ten-thousandth of the sum, straight up and level.
    constexpr unsigned int STEPS = 4000;
    const double along = radius * sine;
    const double length = std::sqrt(AIR_RADIUS * AIR_RADIUS - radius * radius + along * along) - along;
    const double step = length / STEPS;
    Columns columns = {};
    for (unsigned int i = 0; i < STEPS; ++i) {
        const double t = (i + 0.5) * step;
        const double height = std::sqrt(radius * radius + t * t + 2.0 * t * along) - GROUND_RADIUS;
        columns[0] += step * std::exp(-height / AIR_SCALE_HEIGHT * air.getRayleighHeightDensityFactor());
        columns[1] += step * std::exp(-height / HAZE_SCALE_HEIGHT * air.getMieHeightDensityFactor());
        columns[2] += step * std::max(0.0, 1.0 - std::abs(height - OZONE_HEIGHT) / OZONE_HALF_WIDTH *
                                                     air.getOzoneHeightDensityFactor());
    }
    return columns;
}

float transmittanceOf(const Columns& columns, float air, float haze, float ozone) {
    constexpr double KILOMETRES = 1e-3; // coefficients are per megametre
    return static_cast<float>(
        std::exp(-KILOMETRES * (columns[0] * air + columns[1] * haze + columns[2] * ozone)));
}

} // namespace

Vector sunTransmittance(const AtmosphereEffect& air, double height, double elevation) {
    const double radius = GROUND_RADIUS + std::max(LOWEST_EYE, height * 1e-3);
    const double sine = std::sin(elevation * std::numbers::pi / 180.0);
    const double nearest = radius * std::sqrt(1.0 - sine * sine); // to the middle, of the whole line
    if (sine < 0.0 && nearest < GROUND_RADIUS)
        return {};
    if (radius >= AIR_RADIUS) // above the air
        return {1.0f, 1.0f, 1.0f};
    const Columns columns = columnsAlong(air, radius, sine);
    const Vector rayleigh = air.getRayleighExtinction();
    const Vector mie = air.getMieExtinction();
    const Vector ozone = air.getOzoneExtinction();
    return {transmittanceOf(columns, rayleigh.x, mie.x, ozone.x),
            transmittanceOf(columns, rayleigh.y, mie.y, ozone.y),
            transmittanceOf(columns, rayleigh.z, mie.z, ozone.z)};
}

Vector sunIrradiance(const AtmosphereEffect& air, double height, double elevation) {
    return sunTransmittance(air, height, elevation) * air.getSunIlluminanceFactor();
}

} // namespace ovVeldris
