#include <ovImages/JpgEncoder.h>

#include <ovImages/support/HandMade.h>
#include <ovImages/support/Hostile.h>
#include <ovImages/support/Pictures.h>

#include <turbojpeg.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

namespace {

using namespace ovImages;
using handMade::Bytes;

const JpgEncoder ENCODER;

Bytes compress(const Image& image, int pixelFormat, int subsampling, int flags) {
    const tjhandle handle = tjInitCompress();
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    tjCompress2(handle, image.getBytes().data(), static_cast<int>(image.getWidth()), 0,
                static_cast<int>(image.getHeight()), pixelFormat, &bytes, &size, subsampling, 90, flags);
    const Bytes file(bytes, bytes + size);
    tjFree(bytes);
    tjDestroy(handle);
    return file;
}

TEST(JpgEncoderTest, flatBlocksFromHandMadeFiles) {
    struct Case {
        unsigned components;
        ovMemory::Buffer<handMade::JpegSegment> segments;
        Bytes block;
        Bytes expected;
    };
    // Inks: R = (1 - C)(1 - K); with an Adobe segment 255 is no ink. YCCK is CMY as YCbCr of 255 - CMY, and
    // K.
    const Case cases[] = {{1, {}, {77}, {77}},
                          {3, {handMade::makeAdobeSegment(0)}, {200, 100, 50}, {200, 100, 50}},
                          {3, {handMade::makeAdobeSegment(1)}, {90, 128, 128}, {90, 90, 90}},
                          {3, {}, {76, 85, 255}, {254, 0, 0}},
                          {4, {}, {0, 0, 0, 0}, {255, 255, 255}},
                          {4, {}, {255, 0, 51, 0}, {0, 255, 204}},
                          {4, {}, {0, 0, 0, 204}, {51, 51, 51}},
                          {4, {}, {51, 102, 153, 51}, {163, 122, 82}},
                          {4, {handMade::makeAdobeSegment(0)}, {255, 255, 255, 255}, {255, 255, 255}},
                          {4, {handMade::makeAdobeSegment(0)}, {204, 153, 102, 204}, {163, 122, 82}},
                          {4, {handMade::makeAdobeSegment(2)}, {55, 128, 128, 255}, {200, 200, 200}},
                          {4, {handMade::makeAdobeSegment(2)}, {55, 128, 128, 51}, {40, 40, 40}}};
    for (const Case& c : cases) {
        const DecodeResult result =
            ENCODER.decode(handMade::makeJpeg(1, 1, c.components, c.block, c.segments));
        ASSERT_TRUE(result) << result.error;
        ASSERT_EQ(result.image->getChannels(), c.expected.size());
        EXPECT_EQ(result.image->getEncoding(), COLOR_ENCODING::SRGB);
        for (std::size_t i = 0; i < result.image->getBytes().size(); ++i)
            // One step for the rounding of the colour transform.
            ASSERT_NEAR(result.image->getBytes()[i], c.expected[i % c.expected.size()], 1)
                << "components " << c.components << ", first " << int(c.block[0]);
    }
}

TEST(JpgEncoderTest, encodedFilesComeCloseAndOthersReadThem) {
    for (unsigned channels = 1; channels <= 4; ++channels) {
        const Image image = pictures::makeGradient(37, 21, channels);
        const EncodeResult encoded = ENCODER.encode(image.view());
        ASSERT_TRUE(encoded) << encoded.error;
        EXPECT_TRUE(ENCODER.canDecode(encoded.bytes));
        const DecodeResult decoded = ENCODER.decode(encoded.bytes);
        ASSERT_TRUE(decoded) << decoded.error;
        const unsigned kept = channels < 3 ? 1 : 3;
        ASSERT_EQ(decoded.image->getChannels(), kept);
        for (unsigned y = 0; y < 21; ++y)
            for (unsigned x = 0; x < 37; ++x)
                for (unsigned c = 0; c < kept; ++c)
                    // Quality 0.92 changes a smooth picture by few steps of 255.
                    ASSERT_NEAR(decoded.image->getComponent(x, y, c), image.getComponent(x, y, c),
                                8.0f / 255.0f);
        // Two decoders' transforms differ by their rounding.
        const Image other = pictures::decodeWithStb(encoded.bytes, COMPONENT_TYPE::UINT8);
        EXPECT_LE(pictures::getLargestDifference(other.getBytes(), decoded.image->getBytes()), 3);
        EXPECT_EQ(ENCODER.encode(image.view()).bytes, encoded.bytes);
    }
}

TEST(JpgEncoderTest, progressiveEqualsBaseline) {
    const Image image = pictures::makeGradient(50, 35, 3);
    for (const int subsampling : {TJSAMP_444, TJSAMP_420, TJSAMP_411}) {
        const DecodeResult baseline =
            ENCODER.decode(compress(image, TJPF_RGB, subsampling, TJFLAG_ACCURATEDCT));
        const DecodeResult progressive =
            ENCODER.decode(compress(image, TJPF_RGB, subsampling, TJFLAG_ACCURATEDCT | TJFLAG_PROGRESSIVE));
        ASSERT_TRUE(baseline) << baseline.error;
        ASSERT_TRUE(progressive) << progressive.error;
        pictures::expectEqual(*progressive.image, *baseline.image);
    }
}

TEST(JpgEncoderTest, qualityAndSubsamplingMakeFilesSmaller) {
    const Image image = pictures::makePattern(64, 64, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    std::size_t previous = std::numeric_limits<std::size_t>::max();
    for (const EncodeOptions& options :
         {EncodeOptions{0, 1.0f}, EncodeOptions{0, 0.92f}, EncodeOptions{1, 0.92f}, EncodeOptions{2, 0.92f},
          EncodeOptions{2, 0.5f}, EncodeOptions{2, 0.0f}}) {
        const EncodeResult encoded = ENCODER.encode(image.view(), options);
        ASSERT_TRUE(encoded) << encoded.error;
        EXPECT_LT(encoded.bytes.size(), previous);
        previous = encoded.bytes.size();
    }
    struct Case {
        EncodeOptions options;
        ovMemory::String error;
    };
    const Case cases[] = {
        {{3, 0.9f}, "JPEG: the subsampling is 3: expected 0 (4:4:4), 1 (4:2:2) or 2 (4:2:0)"},
        {{0, 1.5f}, "JPEG: the quality is 1.5: expected 0 to 1"},
        {{0, -0.25f}, "JPEG: the quality is -0.25: expected 0 to 1"},
        {{0, std::numeric_limits<float>::quiet_NaN()}, "JPEG: the quality is nan: expected 0 to 1"}};
    for (const Case& c : cases)
        EXPECT_EQ(ENCODER.encode(image.view(), c.options).error, c.error);
}

TEST(JpgEncoderTest, chromaIsSmoothedUnlessToldNotTo) {
    // Columns of red and blue two pixels wide: a sample of 4:2:2 chroma each.
    Image image(32, 16, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    for (unsigned y = 0; y < 16; ++y)
        for (unsigned x = 0; x < 32; ++x)
            image.setComponent(x, y, x / 2 % 2 == 0 ? 0 : 2, 1.0f);
    const EncodeResult encoded = ENCODER.encode(image.view(), {1, 1.0f});
    DecodeOptions blocky;
    blocky.smoothChroma = false;
    const DecodeResult sharp = ENCODER.decode(encoded.bytes, blocky);
    const DecodeResult smooth = ENCODER.decode(encoded.bytes);
    ASSERT_TRUE(sharp && smooth);
    EXPECT_LE(pictures::getLargestDifference(sharp.image->getBytes(), image.getBytes()), 12);
    EXPECT_GE(pictures::getLargestDifference(smooth.image->getBytes(), image.getBytes()), 40);
}

TEST(JpgEncoderTest, damageIsRefusedOrReadAsFarAsItGoes) {
    const Image image = pictures::makeGradient(64, 64, 3);
    const EncodeResult encoded = ENCODER.encode(image.view());
    Bytes file = encoded.bytes;
    file.resize(file.size() / 2);
    const DecodeResult strict = ENCODER.decode(file);
    EXPECT_FALSE(strict);
    EXPECT_EQ(strict.error, "JPEG: damaged data: Premature end of JPEG file");
    DecodeOptions options;
    options.refuseDamaged = false;
    const DecodeResult lenient = ENCODER.decode(file, options);
    ASSERT_TRUE(lenient) << lenient.error;
    EXPECT_EQ(lenient.warning.find("JPEG: damaged data: "), 0u) << lenient.warning;
    const DecodeResult whole = ENCODER.decode(encoded.bytes);
    const auto top = lenient.image->getBytes().first(64 * 8 * 3);
    EXPECT_EQ(pictures::getLargestDifference(top, whole.image->getBytes().first(top.size())), 0);
}

/// A grey file with bytes between two of its segments.
Bytes withStrayBytes(const Bytes& file, unsigned char marker, const Bytes& stray) {
    for (std::size_t i = 2; i + 1 < file.size(); ++i) {
        if (file[i] != 0xff || file[i + 1] != marker)
            continue;
        Bytes changed(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(i));
        changed.insert(changed.end(), stray.begin(), stray.end());
        changed.insert(changed.end(), file.begin() + static_cast<std::ptrdiff_t>(i), file.end());
        return changed;
    }
    return {};
}

TEST(JpgEncoderTest, whatCostsNoPixelIsReadWithAWarning) {
    const Bytes sound = handMade::makeJpeg(2, 1, 1, {77, 200});
    const Bytes jfif = {'J', 'F', 'I', 'F', 0, 9, 9, 0, 0, 1, 0, 1, 0, 0};
    struct Case {
        Bytes file;
        ovMemory::String complaint;
    };
    const Case cases[] = {
        {withStrayBytes(sound, 0xdb, {0}), "Corrupt JPEG data: 1 extraneous bytes before marker 0xdb"},
        {withStrayBytes(sound, 0xc0, {1, 2, 3}), "Corrupt JPEG data: 3 extraneous bytes before marker 0xc0"},
        {withStrayBytes(sound, 0xda, Bytes(4000, 7)),
         "Corrupt JPEG data: 4000 extraneous bytes before marker 0xda"},
        {withStrayBytes(sound, 0xdb, {0, 0xd8}), "Corrupt JPEG data: 2 extraneous bytes before marker 0xdb"},
        {handMade::makeJpeg(2, 1, 1, {77, 200}, {{0xe0, jfif}}),
         "Warning: unknown JFIF revision number 9.09"},
        {handMade::makeJpeg(2, 1, 3, {77, 128, 128, 200, 128, 128}, {handMade::makeAdobeSegment(7)}),
         "Unknown Adobe color transform code 7"}};
    for (const Case& current : cases) {
        ASSERT_TRUE(ENCODER.canDecode(current.file));
        const DecodeResult result = ENCODER.decode(current.file);
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.warning, "JPEG: doubtful data, read nevertheless: " + current.complaint);
        EXPECT_NEAR(result.image->getBytes().front(), 77, 1);
        EXPECT_NEAR(result.image->getBytes().back(), 200, 1);
        DecodeOptions strict;
        strict.strict = true;
        EXPECT_EQ(ENCODER.decode(current.file, strict).error, "JPEG: doubtful data: " + current.complaint);
    }
}

TEST(JpgEncoderTest, damageBehindAStrayByteIsStillDamage) {
    Bytes file = withStrayBytes(handMade::makeJpeg(9, 9, 1, Bytes(81, 90)), 0xc0, {1});
    file.resize(file.size() - 12);
    EXPECT_EQ(ENCODER.decode(file).error, "JPEG: damaged data: Premature end of JPEG file");
}

TEST(JpgEncoderTest, orientationIsFoundBehindStrayBytes) {
    Bytes exif = handMade::fromText("Exif");
    exif.insert(exif.end(), {0, 0});
    const Bytes block = handMade::makeExif(6, true);
    exif.insert(exif.end(), block.begin(), block.end());
    const Bytes file =
        withStrayBytes(handMade::makeJpeg(2, 1, 1, {77, 200}, {{0xe1, exif}}), 0xe1, {3, 1, 4});
    const DecodeResult result = ENCODER.decode(file);
    ASSERT_TRUE(result) << result.error;
    EXPECT_EQ(result.image->getWidth(), 8u);
    EXPECT_EQ(result.image->getHeight(), 16u);
}

TEST(JpgEncoderTest, hostileFiles) {
    const Image image = pictures::makeGradient(17, 9, 3);
    hostile::expectCutsRefused(ENCODER, ENCODER.encode(image.view()).bytes);
    const Bytes progressive = compress(image, TJPF_RGB, TJSAMP_420, TJFLAG_PROGRESSIVE);
    hostile::expectCutsRefused(ENCODER, progressive);
    hostile::expectMutationsSurvived(ENCODER, progressive, 3000);
    const Bytes inks = handMade::makeJpeg(2, 2, 4, Bytes(16, 90), {handMade::makeAdobeSegment(2)});
    hostile::expectMutationsSurvived(ENCODER, inks, 5000);
}

} // namespace
