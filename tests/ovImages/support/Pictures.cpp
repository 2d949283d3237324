#include <ovImages/support/Pictures.h>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_HDR
#include <stb_image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace pictures {

using ovImages::COMPONENT_TYPE;
using ovImages::Image;

Image makePattern(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type,
                  ovImages::COLOR_ENCODING encoding) {
    Image image(width, height, channels, type, encoding);
    const bool isFloat = type == COMPONENT_TYPE::HALF || type == COMPONENT_TYPE::FLOAT;
    unsigned state = 12345;
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            for (unsigned c = 0; c < channels; ++c) {
                state = state * 1664525u + 1013904223u;
                const float value = static_cast<float>(state >> 8) / static_cast<float>(1 << 24);
                image.setComponent(x, y, c, isFloat ? value * 40.0f - 4.0f : value);
            }
    return image;
}

Image makeGradient(unsigned width, unsigned height, unsigned channels) {
    Image image(width, height, channels, COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            for (unsigned c = 0; c < channels; ++c) {
                const float across = static_cast<float>(x) / static_cast<float>(width);
                const float down = static_cast<float>(y) / static_cast<float>(height);
                image.setComponent(x, y, c, c == 0 ? across : c == 1 ? down : 1.0f - across * down);
            }
    return image;
}

void expectEqual(const Image& actual, const Image& expected) {
    EXPECT_EQ(actual.getWidth(), expected.getWidth());
    EXPECT_EQ(actual.getHeight(), expected.getHeight());
    EXPECT_EQ(actual.getChannels(), expected.getChannels());
    EXPECT_EQ(actual.getComponentType(), expected.getComponentType());
    EXPECT_EQ(actual.getEncoding(), expected.getEncoding());
    EXPECT_TRUE(std::equal(actual.getBytes().begin(), actual.getBytes().end(), expected.getBytes().begin(),
                           expected.getBytes().end()));
}

int getLargestDifference(ovMemory::BufferView<const unsigned char> a,
                         ovMemory::BufferView<const unsigned char> b) {
    if (a.size() != b.size())
        return 256;
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(int(a[i]) - int(b[i])));
    return largest;
}

Image decodeWithStb(ovMemory::BufferView<const unsigned char> file, COMPONENT_TYPE type) {
    int width = 0;
    int height = 0;
    int channels = 0;
    const int size = static_cast<int>(file.size());
    void* pixels = nullptr;
    if (type == COMPONENT_TYPE::UINT8)
        pixels = stbi_load_from_memory(file.data(), size, &width, &height, &channels, 0);
    if (type == COMPONENT_TYPE::UINT16)
        pixels = stbi_load_16_from_memory(file.data(), size, &width, &height, &channels, 0);
    if (type == COMPONENT_TYPE::FLOAT)
        pixels = stbi_loadf_from_memory(file.data(), size, &width, &height, &channels, 0);
    if (!pixels)
        return {};
    const bool isFloat = type == COMPONENT_TYPE::FLOAT;
    Image image(static_cast<unsigned>(width), static_cast<unsigned>(height), static_cast<unsigned>(channels),
                type, isFloat ? ovImages::COLOR_ENCODING::LINEAR : ovImages::COLOR_ENCODING::SRGB);
    std::memcpy(image.getBytes().data(), pixels, image.getBytes().size());
    stbi_image_free(pixels);
    return image;
}

} // namespace pictures
