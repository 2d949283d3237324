// A sky over its ground once more, in double precision, with tables of its own.
#pragma once

#include "ovVeldris/effects/atmosphere/AtmosphereReference.h"

#include <gtest/gtest.h>
#include <ovImages/Image.h>
#include <veldris/sky/SkyPlace.h>

namespace skyReference {

using namespace atmosphereReference;

/// Settings of tables of a size that a slow reference can follow.
inline constexpr const char* SMALL_TABLES = "multi-scattering-lut-width=16,multi-scattering-lut-height=16";

/// A table by the cosine of the sun's zenith angle and by height.
inline FloatPicture drawTable(unsigned int width, unsigned int height,
                              const std::function<Three(const Three& origin, const Three& toSun)>& texel) {
    FloatPicture table(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x) {
            const double cosine = 2.0 * (x + 0.5) / width - 1.0;
            const double h = (TOP - GROUND) * (y + 0.5) / height;
            const Three color =
                texel({0.0, GROUND + h, 0.0}, {0.0, cosine, -std::sqrt(1.0 - cosine * cosine)});
            table.at(x, y) = {float(color[0]), float(color[1]), float(color[2]), 1.0f};
        }
    return table;
}

/// Everything that pictures of one sun need.
struct Sky {
    Air air;
    Three toSun;
    double eyeHeight; ///< metres
    FloatPicture sunTable;
    FloatPicture multiTable;
    Three ground = {}; ///< radiance

    /// With tables of the sizes of the settings. @param sun in degrees
    Sky(const ovVeldris::AtmosphereEffectInfo& info, const veldris::SkyPlace& sun, double height)
        : air{info}
        , toSun(directionTo(sun))
        , eyeHeight(height) {
        sunTable = drawTable(info.sunTransmittanceLutWidth, info.sunTransmittanceLutHeight,
                             [&](const Three& o, const Three& l) { return air.sunTransmittance(o, l); });
        multiTable =
            drawTable(info.multiScatteringLutWidth, info.multiScatteringLutHeight,
                      [&](const Three& o, const Three& l) { return air.multiScattering(o, l, sunTable); });
        ground = three(info.planetAlbedo) * levelLight() * (1.0 / std::numbers::pi);
    }

    /// Azimuths grow clockwise from +x, seen from above, where +z lies on the left.
    static Three directionTo(const veldris::SkyPlace& place) {
        const double e = place.elevation * std::numbers::pi / 180.0;
        const double a = place.azimuth * std::numbers::pi / 180.0;
        return {std::cos(e) * std::cos(a), std::sin(e), -std::cos(e) * std::sin(a)};
    }

    /// What a level surface on the ground gets from the sun and from the sky.
    Three levelLight() const {
        Air fine = air;
        fine.info.sunLutSampleCount = 20000;
        const Three sun = fine.sunTransmittance({0.0, GROUND + 1e-3, 0.0}, toSun);
        Three light = sun * std::max(toSun[1], 0.0);
        constexpr unsigned int ROWS = 24;
        for (unsigned int row = 0; row < ROWS; ++row)
            for (unsigned int column = 0; column < 4 * ROWS; ++column) {
                const double y = (row + 0.5) / ROWS; // equal steps of y have equal solid angles
                const double a = 2.0 * std::numbers::pi * (column + 0.5) / (4 * ROWS);
                const double level = std::sqrt(1.0 - y * y);
                const Ray ray = startRay(air, 0.0, {level * std::cos(a), y, level * std::sin(a)}, {});
                const Three seen = march(air, ray, toSun, sunTable, multiTable).scattered;
                light = light + seen * (y * 2.0 * std::numbers::pi / (4 * ROWS * ROWS));
            }
        return light * air.info.sunIlluminanceFactor;
    }

    /// What is seen along a direction of length 1.
    Three seen(const Three& direction) const {
        const Ray ray = startRay(air, eyeHeight, direction, {});
        const Marched marched = march(air, ray, toSun, sunTable, multiTable);
        Three light = marched.scattered * air.info.sunIlluminanceFactor;
        if (ray.meetsGround)
            return light + ground * marched.left;
        return air.info.displaySun
                   ? light + sunDisc(air, ray, toSun, sunTable) * air.info.sunIlluminanceFactor
                   : light;
    }

    /// Whether a direction passes the horizon so closely that floats may take either side.
    bool isNearHorizon(const Three& direction) const {
        const Ray ray = startRay(air, eyeHeight, direction, {});
        return std::abs(clearanceOf(ray.origin, direction)) < 0.1;
    }
};

/// The direction of a pixel of a perspective view. @param fieldOfView vertical, degrees
inline Three directionOfPixel(const veldris::SkyPlace& middle, double fieldOfView, unsigned int x,
                              unsigned int y, unsigned int width, unsigned int height) {
    const Three forward = Sky::directionTo(middle);
    // To the right the azimuth grows; upwards the elevation does.
    const Three right = Sky::directionTo({0.0, middle.azimuth + 90.0});
    const Three up = Sky::directionTo({middle.elevation + 90.0, middle.azimuth});
    const double reach = std::tan(0.5 * fieldOfView * std::numbers::pi / 180.0);
    const double a = (2.0 * (x + 0.5) / width - 1.0) * reach * width / height;
    const double b = (1.0 - 2.0 * (y + 0.5) / height) * reach;
    return normalized(forward + right * a + up * b);
}

/// Compares the pixels of a perspective view with what is seen, but those at the horizon.
/// @param colorAt the three numbers of a pixel @return how many look at the ground
inline unsigned int expectSeen(const Sky& sky, const veldris::SkyPlace& middle, double fieldOfView,
                               unsigned int width, unsigned int height,
                               const std::function<Three(unsigned int x, unsigned int y)>& colorAt) {
    unsigned int grounds = 0;
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x) {
            const Three direction = directionOfPixel(middle, fieldOfView, x, y, width, height);
            if (sky.isNearHorizon(direction))
                continue;
            grounds += direction[1] < -0.1 ? 1 : 0;
            const Three expected = sky.seen(direction);
            const Three color = colorAt(x, y);
            for (unsigned int i = 0; i < 3; ++i) // half a percent: the march is of 32-bit floats
                EXPECT_NEAR(color[i], expected[i], 5e-3 * expected[i] + 2e-5) << x << " " << y << " " << i;
        }
    return grounds;
}
inline unsigned int expectSeen(const Sky& sky, const veldris::SkyPlace& middle, double fieldOfView,
                               const ovImages::Image& picture) {
    return expectSeen(sky, middle, fieldOfView, picture.getWidth(), picture.getHeight(),
                      [&](unsigned int x, unsigned int y) {
                          return Three{picture.getComponent(x, y, 0), picture.getComponent(x, y, 1),
                                       picture.getComponent(x, y, 2)};
                      });
}

} // namespace skyReference
