// The irradiance computation texel by texel in double precision, written from its formulas for the tests: no
// shortcuts, every direction and every function on its own.
#pragma once

#include <array>
#include <cstring>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/environment/irradiance/IrradianceTransform.h>
#include <random>

namespace irradianceReference {

using Direction = std::array<double, 3>;
using Basis = std::array<double, 9>;

Direction direction(bool isCube, unsigned int face, unsigned int i, unsigned int j, unsigned int width,
                    unsigned int height);

Basis basis(const Direction& d);

/// The nine coefficients from what colorOf(slice, i, j) gives.
template <typename ColorOf>
ovVeldris::IrradianceCoefficients project(const ovVeldris::IrradianceMapLayout& layout,
                                          const ColorOf& colorOf) {
    ovVeldris::IrradianceCoefficients sums;
    for (unsigned int slice = 0; slice < layout.slices; ++slice)
        for (unsigned int j = 0; j < layout.height; ++j)
            for (unsigned int i = 0; i < layout.width; ++i) {
                const Basis y = basis(direction(layout.isCube, slice, i, j, layout.width, layout.height));
                const std::array<double, 3> color = colorOf(slice, i, j);
                for (std::size_t k = 0; k < y.size(); ++k)
                    for (std::size_t channel = 0; channel < 3; ++channel)
                        sums.values[k][channel] += color[channel] * y[k];
            }
    const double texels = double(layout.slices) * layout.height * layout.width;
    for (auto& value : sums.values)
        for (double& channel : value)
            channel *= 12.566370964050293 / texels;
    return sums;
}

/// The irradiance over pi in a texel's direction.
std::array<double, 3> evaluate(const ovVeldris::IrradianceCoefficients& coefficients,
                               const ovVeldris::IrradianceMapLayout& layout, unsigned int slice,
                               unsigned int i, unsigned int j);

/// A C++ type's values in bytes.
template <typename Component>
Component componentAt(const ovMemory::Buffer<unsigned char>& bytes, std::size_t place) {
    Component component;
    std::memcpy(&component, bytes.data() + place, sizeof(component));
    return component;
}

/// Bytes without order, the same each time. As floats they are finite, between 0 and 8.
ovMemory::Buffer<unsigned char> noise(std::size_t size, bool floats, unsigned int seed);

} // namespace irradianceReference
