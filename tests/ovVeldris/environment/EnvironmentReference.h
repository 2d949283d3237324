// The environment tools in double precision, written from their formulas for the tests: sampling of cubes and
// maps by longitude and latitude, and the filter's sum as it reads on paper.
#pragma once

#include <array>
#include <cmath>
#include <numbers>
#include <ovMemory/Memory.h>
#include <support/FloatPicture.h>

namespace environmentReference {

using Direction = std::array<double, 3>;
using Color = std::array<double, 4>;

Direction normalized(const Direction& direction);
double dot(const Direction& a, const Direction& b);

/// Direction of a place on a face of Direct3D's cube layout; u from left, v from top, 0 to 1. Length 1.
Direction faceDirection(unsigned int face, double u, double v);
/// The same of the middle of a texel.
Direction texelDirection(unsigned int face, unsigned int x, unsigned int y, unsigned int size);

/// Direction of a place in a map by longitude and latitude, u from left, v from top.
Direction mapDirection(double u, double v);

/// A texture with all its mips: six pictures a mip of a cube, one of a map.
struct Environment {
    bool cube = false;
    ovMemory::Buffer<ovMemory::Buffer<FloatPicture>> mips;

    /// Linear between texels and mips, which a level outside the chain stays at the ends of. A cube is read
    /// across its edges; a map repeats both ways.
    Color sample(const Direction& direction, double level) const;
    /// One mip of a map, place in texture coordinates.
    Color sampleMap(double u, double v, unsigned int mip) const;

private:
    Color _sampleCube(const Direction& direction, unsigned int mip) const;
};

/// A cube whose texels are a function's values in their directions; every mip is sampled anew.
template <typename Function>
Environment makeCube(unsigned int size, const Function& function) {
    Environment environment{.cube = true, .mips = {}};
    for (unsigned int side = size; side > 0; side /= 2) {
        auto& faces = environment.mips.emplace_back();
        for (unsigned int face = 0; face < 6; ++face) {
            FloatPicture& picture = faces.emplace_back(side, side);
            for (unsigned int y = 0; y < side; ++y)
                for (unsigned int x = 0; x < side; ++x)
                    picture.at(x, y) = function(texelDirection(face, x, y, side));
        }
    }
    return environment;
}

/// The same for a map by longitude and latitude.
template <typename Function>
Environment makeMap(unsigned int width, unsigned int height, const Function& function) {
    Environment environment;
    for (unsigned int w = width, h = height;; w = w > 1 ? w / 2 : 1, h = h > 1 ? h / 2 : 1) {
        FloatPicture& picture = environment.mips.emplace_back().emplace_back(w, h);
        for (unsigned int y = 0; y < h; ++y)
            for (unsigned int x = 0; x < w; ++x)
                picture.at(x, y) = function(mapDirection((x + 0.5) / w, (y + 0.5) / h));
        if (w == 1 && h == 1)
            return environment;
    }
}

/// Tangent, bitangent and normal: y is up, or x where the normal is too close to y.
class Frame {
public:
    explicit Frame(const Direction& normal);
    Direction toWorld(const Direction& local) const;

private:
    Direction _tangent;
    Direction _bitangent;
    Direction _normal;
};

/// The filter's sum over 1024 half vectors for a normal; resolution is half the height of the environment.
Color filter(const Environment& environment, const Direction& normal, double roughness);

/// The integral that the filter's sum estimates, over a fine grid of directions, without mips:
/// L(l) n.l D(h) / (4 v.h) with v = n, over the same without L.
template <typename Function>
double integrateLobe(const Function& light, const Direction& normal, double roughness, unsigned int steps) {
    const Frame frame(normal);
    const double alphaSquared = std::pow(roughness, 4.0);
    double sum = 0.0;
    double weights = 0.0;
    for (unsigned int i = 0; i < steps; ++i) {
        const double theta = (i + 0.5) / steps * 0.5 * std::numbers::pi; // between l and n; h is half way
        const double cosH = std::cos(0.5 * theta);
        const double root = cosH * cosH * (alphaSquared - 1.0) + 1.0;
        const double weight = std::cos(theta) * std::sin(theta) * alphaSquared / (root * root);
        for (unsigned int j = 0; j < steps; ++j) {
            const double phi = (j + 0.5) / steps * 2.0 * std::numbers::pi;
            sum += weight * light(frame.toWorld({std::sin(theta) * std::cos(phi),
                                                 std::sin(theta) * std::sin(phi), std::cos(theta)}));
            weights += weight;
        }
    }
    return sum / weights;
}

} // namespace environmentReference
