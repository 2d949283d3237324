#include <ovImages/Panorama.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ovImages {

namespace {

std::size_t pixelSizeOf(const Image& image) {
    return image.getChannels() * getComponentSize(image.getComponentType());
}

} // namespace

void mirrorPanorama(Image& panorama) {
    const std::size_t pixel = pixelSizeOf(panorama);
    const std::size_t row = panorama.getWidth() * pixel;
    for (unsigned y = 0; y < panorama.getHeight(); ++y) {
        unsigned char* left = panorama.getBytes().data() + y * row;
        unsigned char* right = left + row;
        for (unsigned pairs = panorama.getWidth() / 2; pairs > 0; --pairs, left += pixel) {
            right -= pixel;
            std::swap_ranges(left, left + pixel, right);
        }
    }
}

void turnPanorama(Image& panorama, std::ptrdiff_t columns) {
    if (panorama.isEmpty())
        return;
    const auto width = static_cast<std::ptrdiff_t>(panorama.getWidth());
    const auto shift = static_cast<std::size_t>((columns % width + width) % width);
    if (shift == 0)
        return;
    const std::size_t row = panorama.getWidth() * pixelSizeOf(panorama);
    const std::size_t wrapped = shift * pixelSizeOf(panorama); // bytes that go over the right edge
    // Rows go through a copy: turning in place by exchanging bytes takes three times as long.
    ovMemory::Buffer<unsigned char> before(row);
    for (unsigned y = 0; y < panorama.getHeight(); ++y) {
        unsigned char* const bytes = panorama.getBytes().data() + y * row;
        std::memcpy(before.data(), bytes, row);
        std::memcpy(bytes, &before[row - wrapped], wrapped);
        std::memcpy(bytes + wrapped, before.data(), row - wrapped);
    }
}

std::ptrdiff_t getColumnsOfTurn(unsigned width, double degrees) {
    if (!std::isfinite(degrees))
        return 0;
    return std::lround(std::fmod(degrees, 360.0) / 360.0 * static_cast<double>(width));
}

} // namespace ovImages
