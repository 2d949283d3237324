#include <ovImages/ExrEncoder.h>

#include <ovImages/support/ExrFiles.h>
#include <ovImages/support/Hostile.h>
#include <ovImages/support/Pictures.h>

#include <ImfFrameBuffer.h>
#include <ImfInputFile.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

using namespace ovImages;
using exrFiles::Bytes;

const ExrEncoder ENCODER;

void expectValues(const Image& image, const Imath::Box2i& window) {
    for (unsigned y = 0; y < image.getHeight(); ++y)
        for (unsigned x = 0; x < image.getWidth(); ++x)
            for (unsigned c = 0; c < image.getChannels(); ++c)
                ASSERT_EQ(image.getComponent(x, y, c),
                          exrFiles::getValue(c, window.min.x + static_cast<int>(x),
                                             window.min.y + static_cast<int>(y)))
                    << x << ", " << y << ", " << c;
}

TEST(ExrEncoderTest, everyCompressionScanlineAndTiled) {
    const ovMemory::Buffer<exrFiles::Channel> channels = {{"R"}, {"G"}, {"B"}};
    for (int compression = 0; compression < Imf::NUM_COMPRESSION_METHODS; ++compression)
        for (const int kind : {0, 1, 2}) {
            Imf::Header header(37, 35);
            header.compression() = static_cast<Imf::Compression>(compression);
            const Bytes file = kind == 0 ? exrFiles::writeScanlines(header, channels)
                                         : exrFiles::writeTiles(header, channels, kind == 2);
            const DecodeResult result = ENCODER.decode(file);
            ASSERT_TRUE(result) << result.error;
            ASSERT_EQ(result.image->getWidth(), 37u);
            ASSERT_EQ(result.image->getHeight(), 35u);
            EXPECT_EQ(result.image->getComponentType(), COMPONENT_TYPE::HALF);
            EXPECT_EQ(result.image->getEncoding(), COLOR_ENCODING::LINEAR);
            const bool isLossy = compression >= Imf::B44_COMPRESSION;
            if (!isLossy) {
                ASSERT_NO_FATAL_FAILURE(expectValues(*result.image, header.dataWindow()));
            }
            for (unsigned x = 0; isLossy && x < 37; ++x)
                // The lossy ones take this pattern of sharp steps up to 127 far; the mean level stays.
                ASSERT_NEAR(result.image->getComponent(x, 5, 2),
                            exrFiles::getValue(2, static_cast<int>(x), 5), 48.0f);
        }
}

TEST(ExrEncoderTest, dataWindowsTypesAndParts) {
    Imf::Header cropped(100, 50);
    cropped.dataWindow() = Imath::Box2i({-3, 7}, {5, 9});
    Imf::Header upward(6, 5);
    upward.lineOrder() = Imf::DECREASING_Y;
    const ovMemory::Buffer<exrFiles::Channel> halves = {{"R"}, {"G"}, {"B"}, {"A"}};
    const ovMemory::Buffer<exrFiles::Channel> mixed = {{"R"}, {"G", Imf::FLOAT}, {"B", Imf::UINT}};
    const ovMemory::Buffer<exrFiles::Channel> noColor = {{"U"}, {"V"}};
    const Imf::Header small(5, 3);
    struct Case {
        Bytes file;
        unsigned channels;
        COMPONENT_TYPE type;
        Imath::Box2i window;
    };
    const Case cases[] = {
        {exrFiles::writeScanlines(cropped, halves), 4, COMPONENT_TYPE::HALF, cropped.dataWindow()},
        {exrFiles::writeTiles(cropped, halves, false), 4, COMPONENT_TYPE::HALF, cropped.dataWindow()},
        {exrFiles::writeScanlines(upward, halves), 4, COMPONENT_TYPE::HALF, upward.dataWindow()},
        {exrFiles::writeScanlines(cropped, mixed), 3, COMPONENT_TYPE::FLOAT, cropped.dataWindow()},
        {exrFiles::writeTiles(small, mixed, true), 3, COMPONENT_TYPE::FLOAT, small.dataWindow()},
        {exrFiles::writeTwoParts(halves, noColor), 4, COMPONENT_TYPE::HALF, small.dataWindow()},
        {exrFiles::writeTwoParts(noColor, halves), 4, COMPONENT_TYPE::HALF, small.dataWindow()}};
    for (const Case& c : cases) {
        const DecodeResult result = ENCODER.decode(c.file);
        ASSERT_TRUE(result) << result.error;
        ASSERT_EQ(result.image->getChannels(), c.channels);
        ASSERT_EQ(result.image->getComponentType(), c.type);
        ASSERT_EQ(int(result.image->getWidth()), c.window.max.x - c.window.min.x + 1);
        ASSERT_EQ(int(result.image->getHeight()), c.window.max.y - c.window.min.y + 1);
        ASSERT_NO_FATAL_FAILURE(expectValues(*result.image, c.window));
    }
}

TEST(ExrEncoderTest, luminanceAndChromaBecomeColors) {
    const DecodeResult result = ENCODER.decode(exrFiles::writeLuminanceChroma(14, 10, 0.75f, 0.5f, 0.25f));
    ASSERT_TRUE(result) << result.error;
    ASSERT_EQ(result.image->getChannels(), 4u);
    ASSERT_EQ(result.image->getComponentType(), COMPONENT_TYPE::HALF);
    const std::array<float, 4> expected = {0.75f, 0.5f, 0.25f, 0.5f};
    for (unsigned y = 0; y < 10; ++y)
        for (unsigned x = 0; x < 14; ++x)
            for (unsigned c = 0; c < 4; ++c)
                // Luminance and the two ratios are rounded to half, and their products again.
                ASSERT_NEAR(result.image->getComponent(x, y, c), expected[c], 0.005f);
}

TEST(ExrEncoderTest, whatCannotBeRead) {
    EXPECT_EQ(ENCODER.decode(exrFiles::writeDeep()).error,
              "EXR: the file holds deep data, which cannot be read");
    const Bytes subsampled = exrFiles::writeScanlines(Imf::Header(4, 4), {{"R"}, {"G"}, {"B", Imf::HALF, 2}});
    EXPECT_EQ(ENCODER.decode(subsampled).error,
              "EXR: the channel B has 2 x 2 pixels a sample: expected 1 x 1");
}

TEST(ExrEncoderTest, encodedFilesReturnAndTheLibraryReadsThem) {
    constexpr std::array<std::array<const char*, 4>, 4> NAMES = {
        {{"Y"}, {"Y", "A"}, {"R", "G", "B"}, {"R", "G", "B", "A"}}};
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT})
        for (unsigned channels = 1; channels <= 4; ++channels) {
            const Image image = pictures::makePattern(19, 6, channels, type, COLOR_ENCODING::LINEAR);
            const EncodeResult encoded = ENCODER.encode(image.view());
            ASSERT_TRUE(encoded) << encoded.error;
            EXPECT_EQ(encoded.warning, "");
            const DecodeResult decoded = ENCODER.decode(encoded.bytes);
            ASSERT_TRUE(decoded) << decoded.error;
            pictures::expectEqual(*decoded.image, image);

            detail::ExrInputStream stream(encoded.bytes);
            Imf::InputFile file(stream, 0);
            EXPECT_EQ(file.header().compression(), Imf::ZIP_COMPRESSION);
            for (unsigned c = 0; c < channels; ++c) {
                const char* name = NAMES[channels - 1][c];
                ASSERT_TRUE(file.header().channels().findChannel(name));
                EXPECT_EQ(file.header().channels()[name].type == Imf::HALF, type == COMPONENT_TYPE::HALF);
                ovMemory::Buffer<float> plane(19 * 6);
                Imf::FrameBuffer frame;
                frame.insert(
                    name, Imf::Slice::Make(Imf::FLOAT, plane.data(), file.header().dataWindow(), 4, 19 * 4));
                file.setFrameBuffer(frame);
                file.readPixels(0, 5);
                for (unsigned i = 0; i < plane.size(); ++i)
                    ASSERT_EQ(plane[i], image.getComponent(i % 19, i / 19, c));
            }
        }
}

TEST(ExrEncoderTest, specialNumbersAreKept) {
    const std::array<float, 4> values = {std::numeric_limits<float>::infinity(), -3e38f, 1e-45f,
                                         std::numeric_limits<float>::quiet_NaN()};
    Image image(1, 1, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    std::memcpy(image.getBytes().data(), values.data(), sizeof(values));
    const DecodeResult decoded = ENCODER.decode(ENCODER.encode(image.view()).bytes);
    ASSERT_TRUE(decoded) << decoded.error;
    pictures::expectEqual(*decoded.image, image);
}

// Replaces the value of a header's attribute.
Bytes patch(Bytes file, ovMemory::StringView attribute, const ovMemory::Buffer<std::int32_t>& values) {
    for (std::size_t i = 0; i + attribute.size() < file.size(); ++i)
        if (std::memcmp(file.data() + i, attribute.data(), attribute.size()) == 0) {
            std::memcpy(file.data() + i + attribute.size() + 4, values.data(), values.size() * 4);
            return file;
        }
    ADD_FAILURE() << "no such attribute";
    return file;
}

TEST(ExrEncoderTest, headersThatAskForTooMuch) {
    constexpr ovMemory::StringView WINDOW("dataWindow\0box2i\0", 17);
    constexpr ovMemory::StringView TILES("tiles\0tiledesc\0", 15);
    const ovMemory::Buffer<exrFiles::Channel> channels = {{"R"}, {"G"}, {"B"}};
    const Bytes lines = exrFiles::writeScanlines(Imf::Header(5, 3), channels);
    const Bytes tiles = exrFiles::writeTiles(Imf::Header(5, 3), channels, false);
    struct Case {
        Bytes file;
        ovMemory::String error; // how it ends; the library's own words where empty
    };
    const Case cases[] = {{patch(lines, WINDOW, {0, 0, 1000000000, 2}), "a side has at most 1048576"},
                          {patch(lines, WINDOW, {0, 0, 1000000000, 1000000000}), ""},
                          {patch(lines, WINDOW, {0, 0, 1000000, 1000000}), ""},
                          {patch(lines, WINDOW, {0, 0, -1, 2}), ""},
                          {patch(lines, WINDOW, {0, 0, -5, -9}), ""},
                          {patch(lines, WINDOW, {-2147483647, 0, 2147483647, 2}), ""},
                          {patch(tiles, WINDOW, {0, 0, 1000000, 1000000}), ""},
                          {patch(tiles, TILES, {1000000, 1000000}), "too large"},
                          {patch(tiles, TILES, {0, 0}), ""},
                          {patch(tiles, TILES, {2147483647, 2147483647}), ""}};
    for (const Case& c : cases) {
        const DecodeResult result = ENCODER.decode(c.file);
        EXPECT_FALSE(result);
        EXPECT_TRUE(result.error.starts_with("EXR: ") && result.error.ends_with(c.error)) << result.error;
    }
}

TEST(ExrEncoderTest, damageIsRefusedOrReadAsFarAsItGoes) {
    Imf::Header header(8, 40);
    header.compression() = Imf::NO_COMPRESSION;
    Bytes file = exrFiles::writeScanlines(header, {{"R"}, {"G"}, {"B"}});
    file.resize(file.size() - 100);
    const DecodeResult strict = ENCODER.decode(file);
    EXPECT_FALSE(strict);
    EXPECT_TRUE(strict.error.starts_with("EXR: damaged data: ")) << strict.error;
    DecodeOptions options;
    options.refuseDamaged = false;
    const DecodeResult lenient = ENCODER.decode(file, options);
    ASSERT_TRUE(lenient) << lenient.error;
    EXPECT_TRUE(lenient.warning.starts_with("EXR: damaged data: ")) << lenient.warning;
    EXPECT_EQ(lenient.image->getComponent(7, 30, 1), exrFiles::getValue(1, 7, 30));
}

TEST(ExrEncoderTest, hostileFiles) {
    const Image image = pictures::makePattern(5, 3, 3, COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR);
    hostile::expectCutsRefused(ENCODER, ENCODER.encode(image.view()).bytes);
    hostile::expectMutationsSurvived(ENCODER, ENCODER.encode(image.view()).bytes, 3000);
    for (const Imf::Compression compression :
         {Imf::PIZ_COMPRESSION, Imf::B44_COMPRESSION, Imf::DWAB_COMPRESSION}) {
        Imf::Header header(9, 7);
        header.compression() = compression;
        const Bytes file = exrFiles::writeTiles(header, {{"R"}, {"G"}, {"B"}, {"A"}}, true);
        hostile::expectMutationsSurvived(ENCODER, file, 1500);
    }
    hostile::expectMutationsSurvived(ENCODER, exrFiles::writeLuminanceChroma(6, 4, 1, 0.5f, 0.25f), 1500);
    hostile::expectMutationsSurvived(
        ENCODER, exrFiles::writeTwoParts({{"R"}, {"G"}, {"B"}}, {{"Z", Imf::FLOAT}}), 1500);
    hostile::expectMutationsSurvived(ENCODER, exrFiles::writeDeep(), 500);
}

} // namespace
