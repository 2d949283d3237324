// How the texels of each format are to be read for irradiance, found out without the code under test.
#pragma once

#include <algorithm>
#include <ovVeldris/environment/irradiance/IrradianceReference.h>

namespace irradianceReference {

/// A format and how its first three components are to be read, found out without the code under test.
struct Texels {
    ovGraphics::FORMAT format;
    unsigned int channels;
    double scale;
    double (*read)(const ovMemory::Buffer<unsigned char>& bytes, std::size_t place);
    std::size_t componentSize;
    std::size_t texelSize;

    /// The texel of column i in row j; 0 for channels that the format has not.
    std::array<double, 3> colorAt(const ovMemory::Buffer<unsigned char>& bytes, std::size_t pitch,
                                  std::size_t i, std::size_t j) const {
        std::array<double, 3> color = {};
        for (std::size_t channel = 0; channel < std::min(channels, 3u); ++channel)
            color[channel] = read(bytes, j * pitch + i * texelSize + channel * componentSize) / scale;
        return color;
    }
};

template <typename Component>
double readAs(const ovMemory::Buffer<unsigned char>& bytes, std::size_t place) {
    return double(componentAt<Component>(bytes, place));
}

inline constexpr Texels FORMATS[] = {
    {ovGraphics::FORMAT::R32G32B32A32_TYPELESS, 4, 1.0, readAs<float>, 4, 16},
    {ovGraphics::FORMAT::R32G32B32A32_FLOAT, 4, 1.0, readAs<float>, 4, 16},
    {ovGraphics::FORMAT::R32G32B32_FLOAT, 3, 1.0, readAs<float>, 4, 12},
    {ovGraphics::FORMAT::R32G32B32A32_UINT, 4, 1.0, readAs<uint32_t>, 4, 16},
    {ovGraphics::FORMAT::R32G32B32_UINT, 3, 1.0, readAs<uint32_t>, 4, 12},
    {ovGraphics::FORMAT::R32G32B32A32_SINT, 4, 1.0, readAs<int32_t>, 4, 16},
    {ovGraphics::FORMAT::R32G32B32_SINT, 3, 1.0, readAs<int32_t>, 4, 12},
    {ovGraphics::FORMAT::R8G8B8A8_UNORM, 4, 255.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::R8G8B8A8_UNORM_SRGB, 4, 255.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::R8G8B8A8_UINT, 4, 1.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::R8G8B8A8_SNORM, 4, 1.0, readAs<int8_t>, 1, 4},
    {ovGraphics::FORMAT::R8G8B8A8_SINT, 4, 1.0, readAs<int8_t>, 1, 4},
    // Not listed: bytes, from the start of each texel.
    {ovGraphics::FORMAT::R16G16B16A16_FLOAT, 4, 1.0, readAs<uint8_t>, 1, 8},
    {ovGraphics::FORMAT::R32_FLOAT, 1, 1.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::R8_UNORM, 1, 255.0, readAs<uint8_t>, 1, 1},
    {ovGraphics::FORMAT::R8G8_UNORM, 2, 255.0, readAs<uint8_t>, 1, 2},
    {ovGraphics::FORMAT::B8G8R8X8_UNORM, 3, 255.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::B8G8R8A8_UNORM, 4, 255.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::R11G11B10_FLOAT, 3, 1.0, readAs<uint8_t>, 1, 4},
    {ovGraphics::FORMAT::B5G6R5_UNORM, 2, 1.0, readAs<uint8_t>, 1, 2},
};

} // namespace irradianceReference
