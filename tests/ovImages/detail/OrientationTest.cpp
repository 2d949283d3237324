// EXIF orientation, through the formats that carry it.
#include <ovImages/JpgEncoder.h>
#include <ovImages/PngEncoder.h>
#include <ovImages/support/HandMade.h>

#include <gtest/gtest.h>

namespace {

using namespace ovImages;
using handMade::Bytes;

// Rows as text, a letter a pixel.
ovMemory::String describe(const Image& image, unsigned step) {
    ovMemory::String text;
    for (unsigned y = 0; y < image.getHeight(); y += step) {
        for (unsigned x = 0; x < image.getWidth(); x += step)
            text += static_cast<char>(image.getBytes()[(y * image.getWidth() + x) * image.getChannels()]);
        text += '/';
    }
    return text;
}

Bytes makeJpegWith(const Bytes& tiff) {
    Bytes data = handMade::fromText(ovMemory::StringView("Exif\0\0", 6));
    data.insert(data.end(), tiff.begin(), tiff.end());
    return handMade::makeJpeg(3, 2, 1, handMade::fromText("abcdef"), {{0xe1, data}});
}

Bytes makePngWith(const Bytes& tiff) {
    return handMade::makePng({3, 2, 8, 0}, {handMade::fromText("abc"), handMade::fromText("def")},
                             {{"eXIf", tiff}});
}

TEST(OrientationTest, allEightInBothFormatsAndByteOrders) {
    // As EXIF defines them: where the stored row 0 and column 0 are seen.
    const ovMemory::String expected[] = {"abc/def/",  "cba/fed/",  "fed/cba/",  "def/abc/",
                                         "ad/be/cf/", "da/eb/fc/", "fc/eb/da/", "cf/be/ad/"};
    DecodeOptions asStored;
    asStored.applyOrientation = false;
    for (unsigned orientation = 1; orientation <= 8; ++orientation)
        for (const bool isBigEndian : {false, true}) {
            const Bytes exif = handMade::makeExif(orientation, isBigEndian);
            const DecodeResult jpeg = JpgEncoder().decode(makeJpegWith(exif));
            ASSERT_TRUE(jpeg) << jpeg.error;
            EXPECT_EQ(describe(*jpeg.image, 8), expected[orientation - 1]);
            const DecodeResult png = PngEncoder().decode(makePngWith(exif));
            ASSERT_TRUE(png) << png.error;
            EXPECT_EQ(describe(*png.image, 1), expected[orientation - 1]);
            EXPECT_EQ(describe(*JpgEncoder().decode(makeJpegWith(exif), asStored).image, 8), "abc/def/");
            EXPECT_EQ(describe(*PngEncoder().decode(makePngWith(exif), asStored).image, 1), "abc/def/");
        }
}

TEST(OrientationTest, unsoundExifMeansUpright) {
    const Bytes sound = handMade::makeExif(6, false);
    ovMemory::Buffer<Bytes> unsound = {handMade::makeExif(0, false), handMade::makeExif(9, true), {}};
    for (std::size_t size = 0; size < 22; ++size)
        unsound.emplace_back(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(size));
    const auto change = [&](std::size_t offset, unsigned char value) {
        unsound.push_back(sound);
        unsound.back()[offset] = value;
    };
    change(0, 'M');
    change(2, 43);
    change(4, 200);
    change(7, 255);
    change(10, 0x13);
    change(12, 4);
    for (const Bytes& tiff : unsound) {
        const DecodeResult result = JpgEncoder().decode(makeJpegWith(tiff));
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(describe(*result.image, 8), "abc/def/");
    }
    ASSERT_EQ(describe(*JpgEncoder().decode(makeJpegWith(sound)).image, 8), "da/eb/fc/");
}

TEST(OrientationTest, wholePixelsMoveNotBytes) {
    const Bytes row = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
    const DecodeResult result =
        PngEncoder().decode(handMade::makePng({2, 1, 16, 6}, {row}, {{"eXIf", handMade::makeExif(3, true)}}));
    ASSERT_TRUE(result) << result.error;
    // 16-bit samples are stored most significant byte first.
    EXPECT_EQ(result.image->getComponent(0, 0, 0), static_cast<float>(11 * 256 + 12) / 65535.0f);
    EXPECT_EQ(result.image->getComponent(1, 0, 3), static_cast<float>(7 * 256 + 8) / 65535.0f);
}

} // namespace
