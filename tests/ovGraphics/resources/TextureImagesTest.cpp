#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/resources/TextureImages.h>

using namespace ovGraphics;
using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;

namespace {

constexpr COMPONENT_TYPE UINT8 = COMPONENT_TYPE::UINT8;
constexpr COMPONENT_TYPE UINT16 = COMPONENT_TYPE::UINT16;
constexpr COMPONENT_TYPE HALF = COMPONENT_TYPE::HALF;
constexpr COMPONENT_TYPE FLOAT = COMPONENT_TYPE::FLOAT;
constexpr COLOR_ENCODING LINEAR = COLOR_ENCODING::LINEAR;
constexpr COLOR_ENCODING SRGB = COLOR_ENCODING::SRGB;

struct Row {
    COMPONENT_TYPE type;
    unsigned int channels;
    COLOR_ENCODING encoding;
    bool raw;
    FORMAT format;
    bool gammaCorrected;
    bool converted;
};

constexpr std::array ROWS = {
    Row{UINT8, 1, LINEAR, false, FORMAT::R8_UNORM, false, false},
    Row{UINT8, 2, LINEAR, false, FORMAT::R8G8_UNORM, false, false},
    Row{UINT8, 3, LINEAR, false, FORMAT::R8G8B8A8_UNORM, false, true},
    Row{UINT8, 4, LINEAR, false, FORMAT::R8G8B8A8_UNORM, false, false},
    Row{UINT8, 1, SRGB, false, FORMAT::R8G8B8A8_UNORM, true, true},
    Row{UINT8, 2, SRGB, false, FORMAT::R8G8B8A8_UNORM, true, true},
    Row{UINT8, 3, SRGB, false, FORMAT::R8G8B8A8_UNORM, true, true},
    Row{UINT8, 4, SRGB, false, FORMAT::R8G8B8A8_UNORM, true, false},
    Row{UINT8, 1, SRGB, true, FORMAT::R8_UNORM, false, false},
    Row{UINT8, 3, SRGB, true, FORMAT::R8G8B8A8_UNORM, false, true},
    Row{UINT8, 4, SRGB, true, FORMAT::R8G8B8A8_UNORM, false, false},
    Row{UINT16, 1, LINEAR, false, FORMAT::R16_UNORM, false, false},
    Row{UINT16, 2, LINEAR, false, FORMAT::R16G16_UNORM, false, false},
    Row{UINT16, 3, LINEAR, false, FORMAT::R16G16B16A16_UNORM, false, true},
    Row{UINT16, 4, LINEAR, false, FORMAT::R16G16B16A16_UNORM, false, false},
    Row{UINT16, 1, SRGB, false, FORMAT::R32G32B32_FLOAT, false, true},
    Row{UINT16, 2, SRGB, false, FORMAT::R32G32B32A32_FLOAT, false, true}, // keeps its alpha
    Row{UINT16, 3, SRGB, false, FORMAT::R32G32B32_FLOAT, false, true},
    Row{UINT16, 4, SRGB, false, FORMAT::R32G32B32A32_FLOAT, false, true},
    Row{UINT16, 4, SRGB, true, FORMAT::R16G16B16A16_UNORM, false, false},
    Row{HALF, 1, LINEAR, false, FORMAT::R16_FLOAT, false, false},
    Row{HALF, 2, LINEAR, false, FORMAT::R16G16_FLOAT, false, false},
    Row{HALF, 3, LINEAR, false, FORMAT::R16G16B16A16_FLOAT, false, true},
    Row{HALF, 4, LINEAR, false, FORMAT::R16G16B16A16_FLOAT, false, false},
    Row{HALF, 3, SRGB, false, FORMAT::R32G32B32_FLOAT, false, true},
    Row{FLOAT, 1, LINEAR, false, FORMAT::R32_FLOAT, false, false},
    Row{FLOAT, 2, LINEAR, false, FORMAT::R32G32_FLOAT, false, false},
    Row{FLOAT, 3, LINEAR, false, FORMAT::R32G32B32_FLOAT, false, false},
    Row{FLOAT, 4, LINEAR, false, FORMAT::R32G32B32A32_FLOAT, false, false},
    Row{FLOAT, 4, SRGB, false, FORMAT::R32G32B32A32_FLOAT, false, true},
};

/// The transfer function of IEC 61966-2-1.
double decodeSrgb(double encoded) {
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

} // namespace

TEST(TextureImagesTest, everyKindOfImageBecomesATexture) {
    const float value = 0.6f; // of colour; alpha is 0.2
    for (const Row& row : ROWS) {
        SCOPED_TRACE(testing::Message() << "type " << int(row.type) << " channels " << row.channels
                                        << " encoding " << int(row.encoding) << " raw " << row.raw);
        Image image(3, 2, row.channels, row.type, row.encoding);
        const bool hasAlpha = row.channels % 2 == 0;
        for (unsigned int pixel = 0; pixel < 6; ++pixel)
            for (unsigned int channel = 0; channel < row.channels; ++channel)
                image.setComponent(pixel % 3, pixel / 3, channel,
                                   hasAlpha && channel + 1 == row.channels ? 0.2f : value);
        const TextureContent content = textureContentOf(image.view(), row.raw);
        EXPECT_EQ(content.format, row.format);
        EXPECT_EQ(content.gammaCorrected, row.gammaCorrected);
        EXPECT_EQ(!content.converted.isEmpty(), row.converted);
        if (!row.converted)
            continue;
        const Image& converted = content.converted;
        EXPECT_EQ(converted.getWidth(), 3u);
        EXPECT_EQ(converted.getHeight(), 2u);
        const bool decoded = row.encoding == SRGB && !row.raw && !row.gammaCorrected;
        const double expected = decoded ? decodeSrgb(value) : double(value);
        // Eight bits of the image are the coarsest step on the way.
        EXPECT_NEAR(converted.getComponent(2, 1, 0), expected, 0.5 / 255 + 1e-3);
        EXPECT_NEAR(converted.getComponent(2, 1, 2), expected, 0.5 / 255 + 1e-3);
        if (converted.getChannels() == 4) {
            EXPECT_NEAR(converted.getComponent(2, 1, 3), hasAlpha ? 0.2 : 1.0, 0.5 / 255);
        }
    }
}

TEST(TextureImagesTest, brokenImagesGiveNoFormatOrTooFewBytes) {
    const ovMemory::Buffer<unsigned char> bytes(10, 0);
    ovImages::ImageView view{
        .width = 100, .height = 100, .channels = 3, .componentType = UINT8, .bytes = bytes};
    EXPECT_EQ(textureContentOf(view, false).format, FORMAT::UNKNOWN);
    view.channels = 5;
    view.encoding = LINEAR;
    EXPECT_EQ(textureContentOf(view, true).format, FORMAT::UNKNOWN);
}

TEST(TextureImagesTest, texelsBecomeImages) {
    struct FormatRow {
        FORMAT format;
        bool gammaCorrected;
        COMPONENT_TYPE type;
        unsigned int channels;
        COLOR_ENCODING encoding;
    };
    const std::array rows = {
        FormatRow{FORMAT::R8_UNORM, false, UINT8, 1, LINEAR},
        FormatRow{FORMAT::A8_UNORM, false, UINT8, 1, LINEAR},
        FormatRow{FORMAT::R8G8_UNORM, false, UINT8, 2, LINEAR},
        FormatRow{FORMAT::R8G8B8A8_UNORM, false, UINT8, 4, LINEAR},
        FormatRow{FORMAT::R8G8B8A8_UNORM, true, UINT8, 4, SRGB},
        FormatRow{FORMAT::R8G8B8A8_UNORM_SRGB, false, UINT8, 4, SRGB},
        FormatRow{FORMAT::R16_UNORM, false, UINT16, 1, LINEAR},
        FormatRow{FORMAT::D16_UNORM, false, UINT16, 1, LINEAR},
        FormatRow{FORMAT::R16G16_UNORM, false, UINT16, 2, LINEAR},
        FormatRow{FORMAT::R16G16B16A16_UNORM, false, UINT16, 4, LINEAR},
        FormatRow{FORMAT::R16_FLOAT, false, HALF, 1, LINEAR},
        FormatRow{FORMAT::R16G16_FLOAT, false, HALF, 2, LINEAR},
        FormatRow{FORMAT::R16G16B16A16_FLOAT, false, HALF, 4, LINEAR},
        FormatRow{FORMAT::R32_FLOAT, false, FLOAT, 1, LINEAR},
        FormatRow{FORMAT::D32_FLOAT, false, FLOAT, 1, LINEAR},
        FormatRow{FORMAT::R32G32_FLOAT, false, FLOAT, 2, LINEAR},
        FormatRow{FORMAT::R32G32B32_FLOAT, false, FLOAT, 3, LINEAR},
        FormatRow{FORMAT::R32G32B32A32_FLOAT, false, FLOAT, 4, LINEAR},
    };
    for (const FormatRow& row : rows) {
        ovMemory::Buffer<unsigned char> texels(std::size_t(5) * 3 * row.channels *
                                               ovImages::getComponentSize(row.type));
        for (std::size_t i = 0; i < texels.size(); ++i)
            texels[i] = static_cast<unsigned char>(i * 7);
        const auto image = imageOf(texels, row.format, row.gammaCorrected, 5, 3);
        ASSERT_NE(image, nullptr) << int(row.format);
        EXPECT_EQ(image->getWidth(), 5u);
        EXPECT_EQ(image->getHeight(), 3u);
        EXPECT_EQ(image->getChannels(), row.channels) << int(row.format);
        EXPECT_EQ(image->getComponentType(), row.type) << int(row.format);
        EXPECT_EQ(image->getEncoding(), row.encoding) << int(row.format);
        EXPECT_EQ(std::memcmp(image->getBytes().data(), texels.data(), texels.size()), 0) << int(row.format);
        texels.pop_back();
        EXPECT_EQ(imageOf(texels, row.format, row.gammaCorrected, 5, 3), nullptr);
    }
    for (const FORMAT format : {FORMAT::B8G8R8A8_UNORM, FORMAT::B8G8R8A8_UNORM_SRGB}) {
        const ovMemory::Buffer<unsigned char> texel = {10, 20, 30, 40};
        const auto image = imageOf(texel, format, false, 1, 1);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->getBytes()[0], 30);
        EXPECT_EQ(image->getBytes()[1], 20);
        EXPECT_EQ(image->getBytes()[2], 10);
        EXPECT_EQ(image->getBytes()[3], 40);
    }
    for (const FORMAT format :
         {FORMAT::UNKNOWN, FORMAT::R8G8B8A8_SNORM, FORMAT::R11G11B10_FLOAT, FORMAT::BC1_UNORM})
        EXPECT_EQ(imageOf(ovMemory::Buffer<unsigned char>(4, 0), format, false, 1, 1), nullptr);
}
