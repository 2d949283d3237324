// What light from all around does, by direct sums over all texels in double precision, and skies that are
// hard on filters. Written without the library's own geometry.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <ovImages/Image.h>
#include <vector>

namespace lightTruth {

using Direction = std::array<double, 3>;
using Color = std::array<double, 3>;

constexpr double PI = std::numbers::pi;

inline double dot(const Direction& a, const Direction& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Direction normalized(Direction d) {
    const double length = std::sqrt(dot(d, d));
    return {d[0] / length, d[1] / length, d[2] / length};
}

/// Of a place of a panorama, in pixels from its top left corner: the middle is +x, +z a quarter to its right.
inline Direction panoramaDirection(unsigned int width, unsigned int height, double x, double y) {
    const double longitude = (x / width - 0.5) * 2.0 * PI;
    const double latitude = (0.5 - y / height) * PI;
    return {std::cos(latitude) * std::cos(longitude), std::sin(latitude),
            std::cos(latitude) * std::sin(longitude)};
}

/// Of a place of a face, in texels from its top left corner, by Direct3D's table of faces.
inline Direction faceDirection(unsigned int face, unsigned int side, double x, double y) {
    const double u = 2.0 * x / side - 1.0;
    const double v = 2.0 * y / side - 1.0;
    const Direction table[] = {{1, -v, -u}, {-1, -v, u}, {u, 1, v}, {u, -1, -v}, {u, -v, 1}, {-u, -v, -1}};
    return normalized(table[face]);
}

/// The solid angle of a triangle of directions (A. van Oosterom, J. Strackee: The Solid Angle of a Plane
/// Triangle, 1983).
inline double triangle(const Direction& a, const Direction& b, const Direction& c) {
    const double volume = a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
                          a[2] * (b[0] * c[1] - b[1] * c[0]);
    return 2.0 * std::atan2(std::abs(volume), 1.0 + dot(a, b) + dot(b, c) + dot(c, a));
}

/// A texel as a light of no extent.
struct Light {
    Direction direction;
    Color power; ///< radiance times solid angle
    double solidAngle;
};

inline Color colorAt(const ovImages::Image& image, unsigned int x, unsigned int y) {
    return {image.getComponent(x, y, 0), image.getComponent(x, y, 1), image.getComponent(x, y, 2)};
}

/// Every texel of a panorama, or of six faces below each other. Black ones too.
inline std::vector<Light> lightsOf(const ovImages::Image& image, bool isCube) {
    const unsigned int width = image.getWidth();
    const unsigned int height = image.getHeight();
    std::vector<Light> lights;
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            Light light;
            if (isCube) {
                const unsigned int face = y / width;
                const unsigned int v = y % width;
                light.direction = faceDirection(face, width, x + 0.5, v + 0.5);
                const Direction a = faceDirection(face, width, x, v);
                const Direction c = faceDirection(face, width, x + 1.0, v + 1.0);
                light.solidAngle = triangle(a, faceDirection(face, width, x + 1.0, v), c) +
                                   triangle(a, faceDirection(face, width, x, v + 1.0), c);
            } else {
                light.direction = panoramaDirection(width, height, x + 0.5, y + 0.5);
                light.solidAngle =
                    2.0 * PI / width * (std::cos(PI * y / height) - std::cos(PI * (y + 1.0) / height));
            }
            light.power = colorAt(image, x, y);
            for (double& part : light.power)
                part *= light.solidAngle;
            lights.push_back(light);
        }
    }
    return lights;
}

/// The orthonormal real spherical harmonics of bands 0 to 2 in the order 1; x, y, z; zx, xy, 2y^2 - x^2 -
/// z^2, yz, z^2 - x^2.
inline std::array<double, 9> basis(const Direction& d) {
    const auto [x, y, z] = d;
    const double linear = std::sqrt(3.0 / (4.0 * PI));
    const double product = std::sqrt(15.0 / (4.0 * PI));
    return {std::sqrt(1.0 / (4.0 * PI)),
            linear * x,
            linear * y,
            linear * z,
            product * z * x,
            product * x * y,
            std::sqrt(5.0 / (16.0 * PI)) * (2.0 * y * y - x * x - z * z),
            product * y * z,
            0.5 * product * (z * z - x * x)};
}

using Coefficients = std::array<Color, 9>;

inline Coefficients coefficientsOf(const std::vector<Light>& lights) {
    Coefficients sums = {};
    for (const Light& light : lights) {
        const auto functions = basis(light.direction);
        for (std::size_t k = 0; k < 9; ++k)
            for (std::size_t channel = 0; channel < 3; ++channel)
                sums[k][channel] += functions[k] * light.power[channel];
    }
    return sums;
}

/// Irradiance over pi by these coefficients.
inline Color irradiance(const Coefficients& coefficients, const Direction& normal) {
    const auto functions = basis(normal);
    Color sum = {};
    for (std::size_t k = 0; k < 9; ++k)
        for (std::size_t channel = 0; channel < 3; ++channel)
            sum[channel] += (k == 0  ? 1.0
                             : k < 4 ? 2.0 / 3.0
                                     : 0.25) *
                            functions[k] * coefficients[k][channel];
    return sum;
}

/// How much light from an angle counts for a surface of this roughness, seen along its normal, up to a
/// factor: the density of GGX directions around the half vector, times the cosine.
inline double lobe(double roughness, double cosine) {
    const double above = std::max(cosine, 0.0);
    const double alphaSquared = roughness * roughness * roughness * roughness;
    const double cosHalfSquared = 0.5 * (1.0 + above);
    const double root = cosHalfSquared * (alphaSquared - 1.0) + 1.0;
    return above / (root * root);
}

/// The integral of the lobe over all directions, by the midpoint rule in steps that grow with the angle.
inline double lobeIntegral(double roughness) {
    constexpr int STEPS = 200000;
    double sum = 0.0;
    for (int i = 0; i < STEPS; ++i) {
        const double t = (i + 0.5) / STEPS;
        const double angle = 0.5 * PI * t * t;
        sum += lobe(roughness, std::cos(angle)) * std::sin(angle) * PI * t / STEPS;
    }
    return 2.0 * PI * sum;
}

/// What surfaces of this roughness mirror towards their normals. Several at once, so that compilers make
/// vectors of them.
template <std::size_t COUNT>
std::array<Color, COUNT> mirroredOf(const std::vector<Light>& lights, double roughness, double integral,
                                    const std::array<Direction, COUNT>& normals) {
    double x[COUNT];
    double y[COUNT];
    double z[COUNT];
    for (std::size_t i = 0; i < COUNT; ++i) {
        x[i] = normals[i][0];
        y[i] = normals[i][1];
        z[i] = normals[i][2];
    }
    double sums[3][COUNT] = {};
    for (const Light& light : lights) {
        for (std::size_t i = 0; i < COUNT; ++i) {
            const double weight = lobe(roughness, light.direction[0] * x[i] + light.direction[1] * y[i] +
                                                      light.direction[2] * z[i]);
            sums[0][i] += weight * light.power[0];
            sums[1][i] += weight * light.power[1];
            sums[2][i] += weight * light.power[2];
        }
    }
    std::array<Color, COUNT> colors;
    for (std::size_t i = 0; i < COUNT; ++i)
        colors[i] = {sums[0][i] / integral, sums[1][i] / integral, sums[2][i] / integral};
    return colors;
}

inline Color mirrored(const std::vector<Light>& lights, double roughness, double integral,
                      const Direction& normal) {
    return mirroredOf<1>(lights, roughness, integral, {normal})[0];
}

inline ovImages::Image floatPicture(unsigned int width, unsigned int height) {
    return {width, height, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR};
}

inline void setColor(ovImages::Image& image, unsigned int x, unsigned int y, const Color& color) {
    for (unsigned int channel = 0; channel < 3; ++channel)
        image.setComponent(x, y, channel, static_cast<float>(color[channel]));
    image.setComponent(x, y, 3, 1.0f);
}

/// A sky with a hard sun: a disc of 0.6 degrees whose light, 110,000, is beyond half floats and most of all
/// that there is, over a blue sky, a dark ground and a red wall that ends sharply.
inline Color hardSun(const Direction& d) {
    const Direction sun = normalized({0.5, 0.6, -0.7});
    if (dot(d, sun) > std::cos(0.6 * PI / 180.0))
        return {110000.0, 100000.0, 80000.0};
    if (d[0] < -0.8 && std::abs(d[1]) < 0.3)
        return {0.9, 0.1, 0.05};
    if (d[1] < 0.0)
        return {0.15, 0.12, 0.1};
    return {0.3 + 0.2 * (1.0 - d[1]), 0.5, 1.2 - 0.3 * d[1]};
}

inline ovImages::Image hardSunPanorama(unsigned int height) {
    ovImages::Image image = floatPicture(2 * height, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < 2 * height; ++x)
            setColor(image, x, y, hardSun(panoramaDirection(2 * height, height, x + 0.5, y + 0.5)));
    return image;
}

inline ovImages::Image hardSunFaces(unsigned int side) {
    ovImages::Image image = floatPicture(side, 6 * side);
    for (unsigned int y = 0; y < 6 * side; ++y)
        for (unsigned int x = 0; x < side; ++x)
            setColor(image, x, y, hardSun(faceDirection(y / side, side, x + 0.5, y % side + 0.5)));
    return image;
}

/// An environment with a name for messages.
struct Sky {
    const char* name;
    ovImages::Image image;
    bool isCube;
};

/// Grey 0.1 but for one texel.
inline ovImages::Image oneBrightTexel(unsigned int width, unsigned int height, unsigned int x,
                                      unsigned int y) {
    ovImages::Image image = floatPicture(width, height);
    for (unsigned int row = 0; row < height; ++row)
        for (unsigned int column = 0; column < width; ++column)
            setColor(image, column, row, {0.1, 0.1, 0.1});
    setColor(image, x, y, {20000.0, 10000.0, 5000.0});
    return image;
}

} // namespace lightTruth
