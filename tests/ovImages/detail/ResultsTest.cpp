// The shared messages, through the formats that give them.
#include <ovImages/ExrEncoder.h>
#include <ovImages/HdrEncoder.h>
#include <ovImages/JpgEncoder.h>
#include <ovImages/PngEncoder.h>
#include <ovImages/support/HandMade.h>

#include <gtest/gtest.h>

namespace {

using namespace ovImages;

TEST(ResultsTest, absurdSizesAreRefusedFromTheHeaderAlone) {
    const PngEncoder png;
    const JpgEncoder jpg;
    const HdrEncoder hdr;
    handMade::Bytes hugeJpeg = handMade::makeJpeg(1, 1, 3, {1, 2, 3});
    const auto setJpegSize = [&hugeJpeg](unsigned char high, unsigned char low) {
        for (std::size_t i = 0; i + 8 < hugeJpeg.size(); ++i)
            if (hugeJpeg[i] == 0xff && hugeJpeg[i + 1] == 0xc0)
                hugeJpeg[i + 5] = hugeJpeg[i + 7] = high, hugeJpeg[i + 6] = hugeJpeg[i + 8] = low;
        return hugeJpeg;
    };
    struct Case {
        const Encoder& encoder;
        handMade::Bytes bytes;
        ovMemory::String error;
    };
    const auto hdrOf = [](ovMemory::StringView resolution) {
        return handMade::fromText("#?RADIANCE\n\n" + ovMemory::String(resolution) + "\n    ");
    };
    const Case cases[] = {
        {png, handMade::makePng({100000, 100000, 8, 6}, {}),
         "PNG: the picture of 100000 x 100000 pixels takes 40000000000 bytes: at most 2147483648 are "
         "allowed"},
        {png, handMade::makePng({10000, 10000, 8, 6}, {}), "PNG: 68 bytes cannot hold 10000 x 10000 pixels"},
        {png, handMade::makePng({2000000, 1, 8, 6}, {}), "PNG: bad header: image width exceeds user limit"},
        {png, handMade::makePng({0, 1, 8, 6}, {}), "PNG: bad header: invalid image width"},
        {jpg, setJpegSize(0xff, 0xdc),
         "JPEG: the picture of 65500 x 65500 pixels takes 12870750000 bytes: at most 2147483648 are allowed"},
        {jpg, setJpegSize(0x20, 0x00), "JPEG: 163 bytes cannot hold 8192 x 8192 pixels"},
        {hdr, hdrOf("-Y 0 +X 5"), "HDR: the picture is 5 x 0 pixels: it has none"},
        {hdr, hdrOf("-Y 4000000000 +X 4000000000"),
         "HDR: the picture is 4000000000 x 4000000000 pixels: a side has at most 1048576"},
        {hdr, hdrOf("-Y 100000 +X 100000"),
         "HDR: the picture of 100000 x 100000 pixels takes 120000000000 bytes: at most 2147483648 are "
         "allowed"},
        {hdr, hdrOf("-Y 2 +X 5"), "HDR: 4 bytes cannot hold 2 scanlines of 5 pixels"}};
    for (const Case& c : cases) {
        const DecodeResult result = c.encoder.decode(c.bytes);
        EXPECT_FALSE(result);
        EXPECT_EQ(result.error, c.error);
    }
}

TEST(ResultsTest, componentTypesThatAFormatLacks) {
    const PngEncoder png;
    const JpgEncoder jpg;
    const HdrEncoder hdr;
    const ExrEncoder exr;
    struct Case {
        const Encoder& encoder;
        COMPONENT_TYPE type;
        ovMemory::String error;
    };
    const Case cases[] = {
        {png, COMPONENT_TYPE::UINT8, ""},
        {png, COMPONENT_TYPE::UINT16, ""},
        {png, COMPONENT_TYPE::HALF,
         "PNG: cannot hold half float components: convert to 8-bit or 16-bit unsigned first"},
        {png, COMPONENT_TYPE::FLOAT,
         "PNG: cannot hold float components: convert to 8-bit or 16-bit unsigned first"},
        {jpg, COMPONENT_TYPE::UINT8, ""},
        {jpg, COMPONENT_TYPE::UINT16,
         "JPEG: cannot hold 16-bit unsigned components: convert to 8-bit unsigned first"},
        {jpg, COMPONENT_TYPE::FLOAT, "JPEG: cannot hold float components: convert to 8-bit unsigned first"},
        {hdr, COMPONENT_TYPE::UINT8,
         "HDR: cannot hold 8-bit unsigned components: convert to half float or float first"},
        {hdr, COMPONENT_TYPE::HALF, ""},
        {hdr, COMPONENT_TYPE::FLOAT, ""},
        {exr, COMPONENT_TYPE::UINT16,
         "EXR: cannot hold 16-bit unsigned components: convert to half float or float first"},
        {exr, COMPONENT_TYPE::HALF, ""},
        {exr, COMPONENT_TYPE::FLOAT, ""}};
    for (const Case& c : cases) {
        const EncodeResult result = c.encoder.encode(Image(2, 2, 3, c.type, COLOR_ENCODING::LINEAR).view());
        EXPECT_EQ(result.error, c.error);
        EXPECT_EQ(static_cast<bool>(result), c.error.empty());
    }
}

TEST(ResultsTest, whatAFormatCannotHoldIsWarnedOf) {
    const JpgEncoder jpg;
    const HdrEncoder hdr;
    const ExrEncoder exr;
    struct Case {
        const Encoder& encoder;
        COMPONENT_TYPE type;
        unsigned channels;
        COLOR_ENCODING encoding;
        float alpha;
        ovMemory::String warning;
    };
    const ovMemory::String jpegAlpha = "JPEG: the format has no alpha, which was dropped";
    const ovMemory::String jpegLinear =
        "JPEG: the numbers are linear and stored as they are, but readers take them for sRGB";
    const Case cases[] = {
        {jpg, COMPONENT_TYPE::UINT8, 3, COLOR_ENCODING::SRGB, 0, ""},
        {jpg, COMPONENT_TYPE::UINT8, 4, COLOR_ENCODING::SRGB, 1, ""},
        {jpg, COMPONENT_TYPE::UINT8, 4, COLOR_ENCODING::SRGB, 0.5f, jpegAlpha},
        {jpg, COMPONENT_TYPE::UINT8, 2, COLOR_ENCODING::SRGB, 1, ""},
        {jpg, COMPONENT_TYPE::UINT8, 2, COLOR_ENCODING::LINEAR, 0, jpegAlpha + "; " + jpegLinear},
        {hdr, COMPONENT_TYPE::FLOAT, 4, COLOR_ENCODING::LINEAR, 0,
         "HDR: the format has no alpha, which was dropped"},
        {hdr, COMPONENT_TYPE::HALF, 2, COLOR_ENCODING::LINEAR, 1, ""},
        {hdr, COMPONENT_TYPE::HALF, 3, COLOR_ENCODING::SRGB, 0,
         "HDR: the numbers are sRGB-encoded and stored as they are, but readers take them for linear"},
        {exr, COMPONENT_TYPE::HALF, 4, COLOR_ENCODING::LINEAR, 0, ""},
        {exr, COMPONENT_TYPE::FLOAT, 1, COLOR_ENCODING::SRGB, 0,
         "EXR: the numbers are sRGB-encoded and stored as they are, but readers take them for linear"}};
    for (const Case& c : cases) {
        Image image(3, 2, c.channels, c.type, c.encoding);
        for (unsigned i = 0; c.channels % 2 == 0 && i < 6; ++i)
            image.setComponent(i % 3, i / 3, c.channels - 1, i == 5 ? c.alpha : 1.0f);
        const EncodeResult result = c.encoder.encode(image.view());
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.warning, c.warning);
    }
}

} // namespace
