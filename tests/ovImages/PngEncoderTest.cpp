#include <ovImages/PngEncoder.h>

#include <ovImages/support/HandMade.h>
#include <ovImages/support/Hostile.h>
#include <ovImages/support/Pictures.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace ovImages;
using handMade::Bytes;

const PngEncoder ENCODER;

Bytes big32(std::uint32_t value) {
    Bytes bytes;
    handMade::putBig32(bytes, value);
    return bytes;
}

// Components as integers of their own size.
ovMemory::Buffer<unsigned> readAll(const Image& image) {
    ovMemory::Buffer<unsigned> values;
    const float scale = image.getComponentType() == COMPONENT_TYPE::UINT8 ? 255.0f : 65535.0f;
    for (unsigned y = 0; y < image.getHeight(); ++y)
        for (unsigned x = 0; x < image.getWidth(); ++x)
            for (unsigned c = 0; c < image.getChannels(); ++c)
                values.push_back(static_cast<unsigned>(image.getComponent(x, y, c) * scale + 0.5f));
    return values;
}

TEST(PngEncoderTest, everyColorTypeAndDepthFromHandMadeFiles) {
    struct Case {
        handMade::PngHeader header;
        ovMemory::Buffer<Bytes> rows;
        ovMemory::Buffer<handMade::PngChunk> chunks;
        unsigned channels;
        COMPONENT_TYPE type;
        ovMemory::Buffer<unsigned> expected;
    };
    const auto byte = COMPONENT_TYPE::UINT8;
    const auto word = COMPONENT_TYPE::UINT16;
    const handMade::PngChunk palette = {"PLTE", {10, 20, 30, 40, 50, 60, 70, 80, 90}};
    const Case cases[] = {
        {{3, 2, 1, 0}, {{0xa0}, {0x40}}, {}, 1, byte, {255, 0, 255, 0, 255, 0}},
        {{4, 1, 2, 0}, {{0x1b}}, {}, 1, byte, {0, 85, 170, 255}},
        {{2, 1, 4, 0}, {{0x3f}}, {}, 1, byte, {51, 255}},
        {{2, 2, 8, 0}, {{1, 2}, {3, 4}}, {}, 1, byte, {1, 2, 3, 4}},
        {{2, 1, 16, 0}, {{1, 2, 255, 254}}, {}, 1, word, {258, 65534}},
        {{2, 1, 8, 0}, {{7, 9}}, {{"tRNS", {0, 9}}}, 2, byte, {7, 255, 9, 0}},
        {{2, 1, 2, 0}, {{0x60}}, {{"tRNS", {0, 2}}}, 2, byte, {85, 255, 170, 0}},
        {{2, 1, 16, 0}, {{1, 2, 3, 4}}, {{"tRNS", {3, 4}}}, 2, word, {258, 65535, 772, 0}},
        {{2, 1, 8, 2}, {{1, 2, 3, 4, 5, 6}}, {}, 3, byte, {1, 2, 3, 4, 5, 6}},
        {{1, 1, 16, 2}, {{1, 0, 2, 0, 3, 0}}, {}, 3, word, {256, 512, 768}},
        {{2, 1, 8, 2},
         {{1, 2, 3, 4, 5, 6}},
         {{"tRNS", {0, 4, 0, 5, 0, 6}}},
         4,
         byte,
         {1, 2, 3, 255, 4, 5, 6, 0}},
        {{1, 1, 16, 2}, {{1, 0, 2, 0, 3, 0}}, {{"tRNS", {1, 0, 2, 0, 3, 0}}}, 4, word, {256, 512, 768, 0}},
        {{3, 1, 2, 3}, {{0x24}}, {palette}, 3, byte, {10, 20, 30, 70, 80, 90, 40, 50, 60}},
        {{2, 1, 8, 3}, {{2, 1}}, {palette, {"tRNS", {255, 7}}}, 4, byte, {70, 80, 90, 255, 40, 50, 60, 7}},
        {{2, 1, 8, 4}, {{1, 2, 3, 4}}, {}, 2, byte, {1, 2, 3, 4}},
        {{1, 1, 16, 4}, {{1, 2, 3, 4}}, {}, 2, word, {258, 772}},
        {{1, 2, 8, 6}, {{1, 2, 3, 4}, {5, 6, 7, 8}}, {}, 4, byte, {1, 2, 3, 4, 5, 6, 7, 8}},
        {{1, 1, 16, 6}, {{1, 0, 2, 0, 3, 0, 4, 0}}, {}, 4, word, {256, 512, 768, 1024}}};
    for (const Case& c : cases) {
        const Bytes file = handMade::makePng(c.header, c.rows, c.chunks);
        const DecodeResult result = ENCODER.decode(file);
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.warning, "");
        EXPECT_EQ(result.image->getChannels(), c.channels);
        EXPECT_EQ(result.image->getComponentType(), c.type);
        EXPECT_EQ(result.image->getEncoding(), COLOR_ENCODING::SRGB);
        EXPECT_EQ(readAll(*result.image), c.expected)
            << "type " << int(c.header.colorType) << ", depth " << int(c.header.bitDepth);
    }
}

TEST(PngEncoderTest, interlacedEqualsNot) {
    for (const std::uint32_t width : {1u, 5u, 9u})
        for (const std::uint32_t height : {1u, 3u, 11u}) {
            ovMemory::Buffer<Bytes> rows(height);
            for (std::uint32_t y = 0; y < height; ++y)
                for (std::uint32_t i = 0; i < width * 3; ++i)
                    rows[y].push_back(static_cast<unsigned char>(y * 31 + i * 7));
            const DecodeResult plain = ENCODER.decode(handMade::makePng({width, height, 8, 2}, rows));
            const DecodeResult interlaced =
                ENCODER.decode(handMade::makePng({width, height, 8, 2, 1}, handMade::splitAdam7(rows, 3)));
            ASSERT_TRUE(plain) << plain.error;
            ASSERT_TRUE(interlaced) << interlaced.error;
            pictures::expectEqual(*interlaced.image, *plain.image);
            const Bytes all = handMade::join(rows);
            EXPECT_TRUE(std::equal(all.begin(), all.end(), plain.image->getBytes().begin()));
        }
}

TEST(PngEncoderTest, chunksTellWhatTheNumbersMean) {
    struct Case {
        ovMemory::Buffer<handMade::PngChunk> chunks;
        COLOR_ENCODING encoding;
        ovMemory::String warning;
    };
    const auto srgb = COLOR_ENCODING::SRGB;
    const Case cases[] = {
        {{}, srgb, ""},
        {{{"sRGB", {0}}}, srgb, ""},
        {{{"gAMA", big32(45455)}}, srgb, ""},
        {{{"gAMA", big32(100000)}}, COLOR_ENCODING::LINEAR, ""},
        {{{"gAMA", big32(100000)}, {"sRGB", {0}}}, srgb, ""},
        {{{"gAMA", big32(55556)}}, srgb, "PNG: the file's gamma of 0.55556 is read as sRGB"},
        {{{"gAMA", big32(150000)}}, srgb, "PNG: the file's gamma of 1.5 is read as sRGB"}};
    for (const Case& c : cases) {
        const DecodeResult result = ENCODER.decode(handMade::makePng({1, 1, 8, 0}, {{5}}, c.chunks));
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.image->getEncoding(), c.encoding);
        EXPECT_EQ(result.warning, c.warning);
    }
}

TEST(PngEncoderTest, encodedFilesReturnAndOthersReadThem) {
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16})
        for (unsigned channels = 1; channels <= 4; ++channels)
            for (const COLOR_ENCODING encoding : {COLOR_ENCODING::SRGB, COLOR_ENCODING::LINEAR}) {
                Image image = pictures::makePattern(13, 7, channels, type, encoding);
                const EncodeResult encoded = ENCODER.encode(image.view());
                ASSERT_TRUE(encoded) << encoded.error;
                EXPECT_EQ(encoded.warning, "");
                EXPECT_TRUE(ENCODER.canDecode(encoded.bytes));
                const DecodeResult decoded = ENCODER.decode(encoded.bytes);
                ASSERT_TRUE(decoded) << decoded.error;
                pictures::expectEqual(*decoded.image, image);
                image.setEncoding(COLOR_ENCODING::SRGB);
                pictures::expectEqual(pictures::decodeWithStb(encoded.bytes, type), image);
            }
}

TEST(PngEncoderTest, damageIsRefusedOrReadAsFarAsItGoes) {
    const Image image = pictures::makePattern(40, 40, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    Bytes file = ENCODER.encode(image.view()).bytes;
    file.resize(file.size() / 2);
    const DecodeResult strict = ENCODER.decode(file);
    EXPECT_FALSE(strict);
    EXPECT_EQ(strict.error.find("PNG: damaged data: "), 0u) << strict.error;

    DecodeOptions options;
    options.refuseDamaged = false;
    const DecodeResult lenient = ENCODER.decode(file, options);
    ASSERT_TRUE(lenient) << lenient.error;
    EXPECT_EQ(lenient.warning.find("PNG: damaged data: "), 0u) << lenient.warning;
    const auto bytes = lenient.image->getBytes();
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + 40 * 3, image.getBytes().begin()));
    EXPECT_TRUE(std::all_of(bytes.end() - 40 * 3, bytes.end(), [](unsigned char b) { return b == 0; }));

    Bytes badSum = handMade::makePng({1, 1, 8, 0}, {{5}});
    badSum[badSum.size() - 14] ^= 1;
    EXPECT_FALSE(ENCODER.decode(badSum));
    EXPECT_TRUE(ENCODER.decode(badSum, options));
}

TEST(PngEncoderTest, hostileFiles) {
    const Image image = pictures::makePattern(6, 5, 4, COMPONENT_TYPE::UINT16, COLOR_ENCODING::LINEAR);
    hostile::expectCutsRefused(ENCODER, ENCODER.encode(image.view()).bytes);
    hostile::expectMutationsSurvived(ENCODER, ENCODER.encode(image.view()).bytes, 4000);
    const Bytes palette =
        handMade::makePng({9, 3, 4, 3, 1}, {{0}, {0x10}, {0x10, 0x10}, {0}, {0, 0}, {0, 0, 0}},
                          {{"gAMA", big32(45455)},
                           {"PLTE", {1, 2, 3, 4, 5, 6}},
                           {"tRNS", {9}},
                           {"eXIf", handMade::makeExif(6, false)}});
    hostile::expectMutationsSurvived(ENCODER, palette, 4000);
}

} // namespace
