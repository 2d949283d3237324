// Pictures of four floats a pixel, as tests compute and compare them.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <ovMemory/Memory.h>

/// Red, green, blue, alpha.
using FloatPixel = std::array<float, 4>;

/// A picture of floats; row 0 is the top.
struct FloatPicture {
    unsigned int width = 0;
    unsigned int height = 0;
    ovMemory::Buffer<FloatPixel> pixels;

    FloatPicture() = default;
    FloatPicture(unsigned int widthInPixels, unsigned int heightInPixels, const FloatPixel& fill = {})
        : width(widthInPixels)
        , height(heightInPixels)
        , pixels(std::size_t(widthInPixels) * heightInPixels, fill) {}

    FloatPixel& at(unsigned int x, unsigned int y) { return pixels[std::size_t(y) * width + x]; }
    const FloatPixel& at(unsigned int x, unsigned int y) const { return pixels[std::size_t(y) * width + x]; }

    /// The picture that a function of the pixel makes.
    FloatPicture map(const std::function<FloatPixel(const FloatPixel&)>& function) const {
        FloatPicture result(width, height);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            result.pixels[i] = function(pixels[i]);
        return result;
    }
};
