#include <ovImages/HdrEncoder.h>

#include <ovImages/support/HandMade.h>
#include <ovImages/support/Hostile.h>
#include <ovImages/support/Pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <support/Numbers.h>

namespace {

using namespace ovImages;
using handMade::Bytes;

const HdrEncoder ENCODER;

Bytes makeFile(ovMemory::StringView resolution, const Bytes& pixels) {
    Bytes file =
        handMade::fromText("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n" + ovMemory::String(resolution) + "\n");
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

// The mantissas of the red channel, in rows; all pixels have the exponent 136, at which mantissas are the
// values.
ovMemory::String readRed(const Image& image) {
    ovMemory::String text;
    for (unsigned y = 0; y < image.getHeight(); ++y) {
        for (unsigned x = 0; x < image.getWidth(); ++x)
            text += std::to_string(static_cast<int>(image.getComponent(x, y, 0))) + " ";
        text += "/ ";
    }
    return text;
}

TEST(HdrEncoderTest, flatOldAndNewScanlinesFromHandMadeFiles) {
    const Bytes newLine = {2, 2, 0, 9, 128 + 9, 50, 3, 1, 2, 3, 128 + 6, 4,
                           9, 0, 0, 0, 0,       0,  0, 0, 0, 0, 128 + 9, 136};
    struct Case {
        ovMemory::String what;
        ovMemory::String resolution;
        Bytes pixels;
        ovMemory::String red;
    };
    const Case cases[] = {
        {"flat",
         "-Y 2 +X 2",
         {10, 0, 0, 136, 20, 0, 0, 136, 30, 0, 0, 136, 40, 0, 0, 136},
         "10 20 / 30 40 / "},
        {"old run", "-Y 1 +X 6", {10, 0, 0, 136, 1, 1, 1, 4, 20, 0, 0, 136}, "10 10 10 10 10 20 / "},
        {"old run of no length", "-Y 1 +X 2", {10, 0, 0, 136, 1, 1, 1, 0, 20, 0, 0, 136}, "10 20 / "},
        {"two old runs apart",
         "-Y 1 +X 6",
         {10, 0, 0, 136, 1, 1, 1, 2, 20, 0, 0, 136, 1, 1, 1, 2},
         "10 10 10 20 20 20 / "},
        {"new", "-Y 1 +X 9", newLine, "50 50 50 50 50 50 50 50 50 / "},
        {"new beside old", "-Y 2 +X 9",
         handMade::join(ovMemory::Buffer<Bytes>{newLine, {7, 0, 0, 136, 1, 1, 1, 8}}),
         "50 50 50 50 50 50 50 50 50 / 7 7 7 7 7 7 7 7 7 / "},
        {"pixels that only look new in a short line", "-Y 1 +X 2", {2, 2, 0, 136, 2, 2, 5, 136}, "2 2 / "},
        {"trailing bytes", "-Y 1 +X 1", {9, 0, 0, 136, 1, 2, 3}, "9 / "}};
    for (const Case& c : cases) {
        const DecodeResult result = ENCODER.decode(makeFile(c.resolution, c.pixels));
        ASSERT_TRUE(result) << c.what << ": " << result.error;
        EXPECT_EQ(readRed(*result.image), c.red) << c.what;
        EXPECT_EQ(result.image->getComponentType(), COMPONENT_TYPE::FLOAT);
        EXPECT_EQ(result.image->getEncoding(), COLOR_ENCODING::LINEAR);
        EXPECT_EQ(result.image->getChannels(), 3u);
    }
    const DecodeResult mixed = ENCODER.decode(makeFile("-Y 1 +X 9", newLine));
    EXPECT_EQ(mixed.image->getComponent(0, 0, 1), 1.0f);
    EXPECT_EQ(mixed.image->getComponent(3, 0, 1), 4.0f);
}

TEST(HdrEncoderTest, adjacentOldRunsCountInHigherDigits) {
    // 1 + 44 + 1 * 256 pixels: a line of 301, of which the last is another.
    const DecodeResult result =
        ENCODER.decode(makeFile("-Y 1 +X 302", {10, 0, 0, 136, 1, 1, 1, 44, 1, 1, 1, 1, 20, 0, 0, 136}));
    ASSERT_TRUE(result) << result.error;
    for (unsigned x = 0; x < 302; ++x)
        ASSERT_EQ(result.image->getComponent(x, 0, 0), x < 301 ? 10.0f : 20.0f) << x;
}

TEST(HdrEncoderTest, exponentsAndMantissas) {
    struct Case {
        std::array<unsigned char, 4> pixel;
        std::array<float, 3> expected;
    };
    const Case cases[] = {{{128, 64, 32, 129}, {1.0f, 0.5f, 0.25f}},
                          {{255, 255, 255, 0}, {0, 0, 0}},
                          {{0, 0, 0, 136}, {0, 0, 0}},
                          {{255, 128, 0, 255}, {255 * 0x1p119f, 0x1p126f, 0}},
                          {{128, 255, 0, 1}, {0x1p-128f, 255 * 0x1p-135f, 0}}};
    for (const Case& c : cases) {
        const DecodeResult result =
            ENCODER.decode(makeFile("-Y 1 +X 1", Bytes(c.pixel.begin(), c.pixel.end())));
        ASSERT_TRUE(result) << result.error;
        for (unsigned i = 0; i < 3; ++i)
            EXPECT_EQ(result.image->getComponent(0, 0, i), c.expected[i]);
    }
}

TEST(HdrEncoderTest, unsoundScanlines) {
    struct Case {
        ovMemory::String resolution;
        Bytes pixels;
        ovMemory::String error;
    };
    const Bytes pixel = {10, 0, 0, 136};
    const Case cases[] = {
        {"-Y 1 +X 2", {1, 1, 1, 1, 10, 0, 0, 136}, "scanline 0: a run of 1 pixels does not fit"},
        {"-Y 1 +X 2", {10, 0, 0, 136, 1, 1, 1, 2}, "scanline 0: a run of 2 pixels does not fit"},
        {"-Y 2 +X 1", {10, 0, 0, 136, 1, 1, 1, 1}, "scanline 1: a run of 1 pixels does not fit"},
        {"-Y 1 +X 2", pixel, "scanline 0: the data ends within it"},
        {"-Y 1 +X 9", {2, 2, 0, 8, 137, 1}, "scanline 0: the scanline has 8 pixels: expected 9"},
        {"-Y 1 +X 9", {2, 2, 0, 9, 138, 1}, "scanline 0: a run of 10 pixels does not fit"},
        {"-Y 1 +X 9", {2, 2, 0, 9, 0, 1}, "scanline 0: a run of 0 pixels does not fit"},
        {"-Y 1 +X 9", {2, 2, 0, 9, 9, 1, 2}, "scanline 0: the data ends within it"},
        {"-Y 1 +X 9", {2, 2, 0, 9, 137}, "scanline 0: the data ends within it"}};
    DecodeOptions lenient;
    lenient.refuseDamaged = false;
    for (const Case& c : cases) {
        const Bytes file = makeFile(c.resolution, c.pixels);
        EXPECT_EQ(ENCODER.decode(file).error, "HDR: damaged data: " + c.error);
        const DecodeResult result = ENCODER.decode(file, lenient);
        ASSERT_TRUE(result);
        EXPECT_EQ(result.warning, "HDR: damaged data: " + c.error);
    }
}

TEST(HdrEncoderTest, encodedFilesReturnAndOthersReadThem) {
    // 7 and 32768 have no run-length form; 300 has runs longer than a code holds.
    for (const unsigned width : {1u, 7u, 8u, 300u, 32767u, 32768u}) {
        Image image = pictures::makePattern(width, 3, 3, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
        for (unsigned x = 0; x < width; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                image.setComponent(x, 0, c, std::fabs(image.getComponent(x, 0, c)));
                image.setComponent(x, 1, c, x / 200 % 2 == 0 ? 0.5f : 3.0f);
                image.setComponent(x, 2, c, std::ldexp(1.0f, static_cast<int>((x + c * 3) % 250) - 126));
            }
        const EncodeResult encoded = ENCODER.encode(image.view());
        ASSERT_TRUE(encoded) << encoded.error;
        EXPECT_EQ(encoded.warning, "");
        const DecodeResult decoded = ENCODER.decode(encoded.bytes);
        ASSERT_TRUE(decoded) << decoded.error;
        for (unsigned y = 0; y < 3; ++y)
            for (unsigned x = 0; x < width; ++x) {
                const float largest = std::max(
                    {image.getComponent(x, y, 0), image.getComponent(x, y, 1), image.getComponent(x, y, 2)});
                for (unsigned c = 0; c < 3; ++c)
                    // Half a step of an 8-bit mantissa: most for one just below 256, which takes the next
                    // exponent.
                    ASSERT_NEAR(decoded.image->getComponent(x, y, c), image.getComponent(x, y, c),
                                largest / 255.0f);
            }
        pictures::expectEqual(pictures::decodeWithStb(encoded.bytes, COMPONENT_TYPE::FLOAT), *decoded.image);
        // What has been through the format once is exact from then on.
        EXPECT_EQ(ENCODER.encode(decoded.image->view()).bytes, encoded.bytes);
        // 4 bytes a pixel without runs, which half of this picture has.
        EXPECT_TRUE(width != 300 || encoded.bytes.size() < 300 * 3 * 3) << encoded.bytes.size();
    }
}

TEST(HdrEncoderTest, specialNumbersAndOtherKinds) {
    struct Case {
        COMPONENT_TYPE type;
        unsigned channels;
        std::array<float, 4> source;
        std::array<float, 3> expected;
        ovMemory::String warning;
    };
    const float largest = 255 * 0x1p119f;
    const Case cases[] = {
        {COMPONENT_TYPE::FLOAT, 3, {1, 0.5f, 0}, {1, 0.5f, 0}, ""},
        {COMPONENT_TYPE::FLOAT, 3, {-1, 0.5f, -0.0f}, {0, 0.5f, 0}, "HDR: 1 components below 0 became 0"},
        {COMPONENT_TYPE::FLOAT,
         3,
         {NOT_A_NUMBER, 0.5f, 0},
         {0, 0.5f, 0},
         "HDR: 1 components that are not a number became 0"},
        {COMPONENT_TYPE::FLOAT,
         3,
         {INFINITE, 0, 3e38f},
         {largest, 0, largest},
         "HDR: 2 components beyond 1.69e38 were clamped to it"},
        {COMPONENT_TYPE::HALF,
         3,
         {-INFINITE, NOT_A_NUMBER, 2},
         {0, 0, 2},
         "HDR: 1 components below 0 became 0; HDR: 1 components that are not a number became 0"},
        {COMPONENT_TYPE::FLOAT, 3, {1e-45f, 0, 0}, {0, 0, 0}, ""},
        {COMPONENT_TYPE::FLOAT, 3, {0.999f, 0, 0}, {1, 0, 0}, ""},
        {COMPONENT_TYPE::HALF, 1, {4}, {4, 4, 4}, ""},
        {COMPONENT_TYPE::HALF, 2, {4, 1}, {4, 4, 4}, ""},
        {COMPONENT_TYPE::FLOAT, 4, {4, 2, 1, 1}, {4, 2, 1}, ""}};
    for (const Case& c : cases) {
        Image image(1, 1, c.channels, c.type, COLOR_ENCODING::LINEAR);
        for (unsigned i = 0; i < c.channels; ++i)
            image.setComponent(0, 0, i, c.source[i]);
        // Half clamps infinity when set like that; the bits of minus infinity put it back.
        if (c.type == COMPONENT_TYPE::HALF && std::isinf(c.source[0]))
            image.getBytes()[0] = 0x00, image.getBytes()[1] = 0xfc;
        const EncodeResult encoded = ENCODER.encode(image.view());
        ASSERT_TRUE(encoded) << encoded.error;
        EXPECT_EQ(encoded.warning, c.warning);
        const DecodeResult decoded = ENCODER.decode(encoded.bytes);
        ASSERT_TRUE(decoded) << decoded.error;
        for (unsigned i = 0; i < 3; ++i)
            EXPECT_EQ(decoded.image->getComponent(0, 0, i), c.expected[i]);
    }
}

TEST(HdrEncoderTest, hostileFiles) {
    Image image = pictures::makePattern(12, 3, 3, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    hostile::expectCutsRefused(ENCODER, ENCODER.encode(image.view()).bytes);
    hostile::expectMutationsSurvived(ENCODER, ENCODER.encode(image.view()).bytes, 6000);
    const Bytes old = makeFile("+X 2 -Y 302", {10, 0, 0, 136, 1, 1, 1, 44, 1, 1, 1, 1, 20, 0, 0, 136,
                                               10, 0, 0, 136, 1, 1, 1, 44, 1, 1, 1, 1, 20, 0, 0, 136});
    hostile::expectCutsRefused(ENCODER, old);
    hostile::expectMutationsSurvived(ENCODER, old, 6000);
}

} // namespace
