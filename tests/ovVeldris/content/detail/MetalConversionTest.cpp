#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/content/detail/MetalConversion.h>

using namespace ovVeldris::detail;
using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovMaths::Vector;

namespace {

/// Bytes that follow no simple rule.
Image makeNoise(unsigned int width, unsigned int height, unsigned int channels, COLOR_ENCODING encoding,
                unsigned int seed) {
    Image image(width, height, channels, COMPONENT_TYPE::UINT8, encoding);
    for (unsigned char& byte : image.getBytes()) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<unsigned char>(seed >> 24);
    }
    return image;
}

/// IEC 61966-2-1.
double decoded(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double encodedByte(double value) {
    const double clamped = std::clamp(value, 0.0, 1.0);
    const double encoded =
        clamped <= 0.0031308 ? 12.92 * clamped : 1.055 * std::pow(clamped, 1.0 / 2.4) - 0.055;
    return 255.0 * encoded;
}

/// The formulas in double precision, channel by channel, for pictures of equal size.
void expectFormulas(const MetalSurface& source, const Image& diffuse, const Image& reflectance) {
    constexpr double ROUNDING = 0.5 + 1e-3; // of the byte, and of the floats before it
    const double factors[] = {source.baseColor.x, source.baseColor.y, source.baseColor.z};
    for (std::size_t texel = 0; texel < std::size_t{source.base.width} * source.base.height; ++texel) {
        const unsigned char* base = &source.base.bytes[texel * source.base.channels];
        const unsigned char* surface = &source.surface.bytes[texel * source.surface.channels];
        const double m = surface[source.surface.channels < 3 ? 0 : 2] / 255.0 * source.metallic;
        for (std::size_t i = 0; i < 3; ++i) {
            const double color = decoded(base[source.base.channels < 3 ? 0 : i] / 255.0) * factors[i];
            EXPECT_NEAR(diffuse.getBytes()[texel * 4 + i], encodedByte(color * (1 - m)), ROUNDING) << texel;
            EXPECT_NEAR(reflectance.getBytes()[texel * 4 + i], encodedByte(0.04 * (1 - m) + color * m),
                        ROUNDING)
                << texel;
        }
        const int alpha = source.base.channels % 2 == 0 ? base[source.base.channels - 1] : 255;
        EXPECT_EQ(diffuse.getBytes()[texel * 4 + 3], alpha) << texel;
        EXPECT_EQ(reflectance.getBytes()[texel * 4 + 3], 255) << texel;
    }
}

} // namespace

TEST(MetalConversionTest, followsTheFormulas) {
    for (unsigned int channels = 1; channels <= 4; ++channels) {
        const Image base = makeNoise(13, 11, channels, COLOR_ENCODING::SRGB, channels);
        const Image surface = makeNoise(13, 11, 5 - channels, COLOR_ENCODING::LINEAR, 99);
        const MetalSurface source = {base.view(), surface.view(), Vector(0.7f, 1.0f, 1.6f, 0.5f), 0.8f};
        expectFormulas(source, makeDiffuse(source), makeReflectance(source));
    }
}

// Bytes go through a table of all pairs, everything else through rows of floats: the same bits come out.
TEST(MetalConversionTest, bothWaysGiveTheSameBytes) {
    Image base(256, 256, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    Image surface(256, 256, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
    for (std::size_t i = 0; i < base.getBytes().size(); ++i) {
        base.getBytes()[i] = static_cast<unsigned char>(i / 3);
        surface.getBytes()[i] = static_cast<unsigned char>(i / 3 / 256);
    }
    const Image wideSurface = convertImage(surface.view(), COMPONENT_TYPE::FLOAT, 4, COLOR_ENCODING::LINEAR);
    const MetalSurface bytes = {base.view(), surface.view(), Vector(0.3f, 1.0f, 2.7f), 0.9f};
    const MetalSurface floats = {base.view(), wideSurface.view(), bytes.baseColor, bytes.metallic};
    EXPECT_TRUE(std::ranges::equal(makeDiffuse(bytes).getBytes(), makeDiffuse(floats).getBytes()));
    EXPECT_TRUE(std::ranges::equal(makeReflectance(bytes).getBytes(), makeReflectance(floats).getBytes()));
}

TEST(MetalConversionTest, theSmallerPictureIsStretched) {
    Image base(1, 1, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    std::ranges::fill(base.getBytes(), static_cast<unsigned char>(188));
    Image surface(2, 1, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
    surface.getBytes()[1] = 255;
    const MetalSurface wide = {base.view(), surface.view(), Vector(1.0f, 1.0f, 1.0f), 1.0f};
    const Image diffuse = makeDiffuse(wide);
    ASSERT_EQ(diffuse.getWidth(), 2u);
    ASSERT_EQ(diffuse.getHeight(), 1u);
    EXPECT_EQ(diffuse.getBytes()[0], 188);
    EXPECT_EQ(diffuse.getBytes()[4], 0);
    EXPECT_EQ(makeReflectance(wide).getBytes()[4], 188);
    const Image tall = makeNoise(1, 5, 3, COLOR_ENCODING::SRGB, 3);
    const Image both = makeReflectance({tall.view(), surface.view(), Vector(1.0f, 1.0f, 1.0f), 1.0f});
    EXPECT_EQ(both.getWidth(), 2u);
    EXPECT_EQ(both.getHeight(), 5u);
}
