#include <ovImages/Conversion.h>

#include <ovImages/support/Pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <support/Numbers.h>
#include <vector>

namespace {

using namespace ovImages;

// IEC 61966-2-1 in double.
double decode(double v) {
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}
double encode(double v) {
    return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

struct Target {
    COMPONENT_TYPE type;
    unsigned channels;
    COLOR_ENCODING encoding;
};

// One pixel the long way: always to linear RGBA and back, which comes to the same.
std::array<double, 4> convertPixel(const Image& source, unsigned x, unsigned y, const Target& target) {
    const unsigned channels = source.getChannels();
    const auto read = [&](unsigned c) { return static_cast<double>(source.getComponent(x, y, c)); };
    const bool isColored = channels >= 3;
    std::array<double, 4> color = {read(0), read(isColored ? 1 : 0), read(isColored ? 2 : 0),
                                   channels % 2 == 0 ? read(channels - 1) : 1.0};
    for (unsigned c = 0; c < 3; ++c)
        color[c] = source.getEncoding() == COLOR_ENCODING::SRGB ? decode(color[c]) : color[c];
    if (isColored && target.channels < 3)
        color[0] = 0.2126 * color[0] + 0.7152 * color[1] + 0.0722 * color[2];
    for (unsigned c = 0; c < 3; ++c)
        color[c] = target.encoding == COLOR_ENCODING::SRGB ? encode(color[c]) : color[c];
    if (target.channels == 2)
        color[1] = color[3];
    return color;
}

// Rounding to the target's steps, and what float arithmetic loses before it.
double getTolerance(COMPONENT_TYPE type, double expected) {
    switch (type) {
    case COMPONENT_TYPE::UINT8:
        return 0.5 / 255 + 1e-5;
    case COMPONENT_TYPE::UINT16:
        return 0.5 / 65535 + 1e-5;
    case COMPONENT_TYPE::HALF:
        return std::fabs(expected) * 0x1p-11 * 1.01 + 1e-6;
    default:
        return std::fabs(expected) * 4e-6 + 1e-6;
    }
}

void expectConverted(const Image& source, const Target& target) {
    const Image converted = convertImage(source.view(), target.type, target.channels, target.encoding);
    ASSERT_EQ(converted.getComponentType(), target.type);
    ASSERT_EQ(converted.getChannels(), target.channels);
    ASSERT_EQ(converted.getEncoding(), target.encoding);
    ASSERT_EQ(converted.getWidth(), source.getWidth());
    ASSERT_EQ(converted.getHeight(), source.getHeight());
    const bool isUnorm = target.type == COMPONENT_TYPE::UINT8 || target.type == COMPONENT_TYPE::UINT16;
    for (unsigned y = 0; y < source.getHeight(); ++y)
        for (unsigned x = 0; x < source.getWidth(); ++x) {
            const std::array<double, 4> pixel = convertPixel(source, x, y, target);
            for (unsigned c = 0; c < target.channels; ++c) {
                const double expected = isUnorm ? std::clamp(pixel[c], 0.0, 1.0) : pixel[c];
                ASSERT_NEAR(converted.getComponent(x, y, c), expected, getTolerance(target.type, expected));
            }
        }
}

TEST(ConversionTest, everyKindToEveryKind) {
    constexpr std::array TYPES = {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16, COMPONENT_TYPE::HALF,
                                  COMPONENT_TYPE::FLOAT};
    constexpr std::array ENCODINGS = {COLOR_ENCODING::LINEAR, COLOR_ENCODING::SRGB};
    for (const COMPONENT_TYPE sourceType : TYPES)
        for (unsigned sourceChannels = 1; sourceChannels <= 4; ++sourceChannels)
            for (const COLOR_ENCODING sourceEncoding : ENCODINGS) {
                const Image source = pictures::makePattern(5, 4, sourceChannels, sourceType, sourceEncoding);
                for (const COMPONENT_TYPE type : TYPES)
                    for (unsigned channels = 1; channels <= 4; ++channels)
                        for (const COLOR_ENCODING encoding : ENCODINGS)
                            ASSERT_NO_FATAL_FAILURE(expectConverted(source, {type, channels, encoding}));
            }
}

TEST(ConversionTest, equalKindsAreCopiedBitByBit) {
    Image source(2, 1, 1, COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR);
    const std::array<unsigned char, 4> bits = {0x01, 0x7c, 0x00, 0xfc}; // a signalling NaN and minus infinity
    std::copy(bits.begin(), bits.end(), source.getBytes().begin());
    ovMemory::String warning = "old";
    pictures::expectEqual(
        convertImage(source.view(), COMPONENT_TYPE::HALF, 1, COLOR_ENCODING::LINEAR, &warning), source);
    EXPECT_EQ(warning, "");
}

TEST(ConversionTest, specialNumbers) {
    struct Case {
        COMPONENT_TYPE type;
        COLOR_ENCODING encoding;
        std::array<float, 4> expected;
        ovMemory::String warning;
    };
    const std::array<float, 4> source = {NOT_A_NUMBER, INFINITE, -INFINITE, 110000.0f};
    const Case cases[] = {{COMPONENT_TYPE::UINT8,
                           COLOR_ENCODING::LINEAR,
                           {0, 1, 0, 1},
                           "1 components that are not a number became 0"},
                          {COMPONENT_TYPE::UINT16,
                           COLOR_ENCODING::SRGB,
                           {0, 1, 0, 1},
                           "1 components that are not a number became 0"},
                          {COMPONENT_TYPE::HALF,
                           COLOR_ENCODING::LINEAR,
                           {NOT_A_NUMBER, 65504, -65504, 65504},
                           "3 components beyond 65504, the largest half float, were clamped to it"},
                          {COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR, source, ""}};
    Image image(4, 1, 1, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned x = 0; x < source.size(); ++x)
        image.setComponent(x, 0, 0, source[x]);
    for (const Case& c : cases) {
        ovMemory::String warning = "old";
        const Image converted = convertImage(image.view(), c.type, 1, c.encoding, &warning);
        EXPECT_EQ(warning, c.warning);
        for (unsigned x = 0; x < source.size(); ++x) {
            const float actual = converted.getComponent(x, 0, 0);
            EXPECT_TRUE(actual == c.expected[x] || (std::isnan(actual) && std::isnan(c.expected[x]))) << x;
        }
    }
}

TEST(ConversionTest, transferFunctionsAreExactAndInverse) {
    for (int i = -20; i <= 4000; ++i) {
        const float value = static_cast<float>(i) / 1000.0f;
        // pow in float is good to a few units in the last place.
        EXPECT_NEAR(srgbToLinear(value), decode(value), std::max(1e-6, std::fabs(decode(value)) * 1e-6));
        EXPECT_NEAR(linearToSrgb(value), encode(value), std::max(1e-6, std::fabs(encode(value)) * 1e-6));
        EXPECT_NEAR(srgbToLinear(linearToSrgb(value)), value, std::max(1e-6, std::fabs(value) * 4e-6));
    }
    EXPECT_TRUE(std::isnan(srgbToLinear(NOT_A_NUMBER)));
    EXPECT_TRUE(std::isnan(linearToSrgb(NOT_A_NUMBER)));
}

TEST(ConversionTest, eightBitsSurviveLinearFloatAndHalf) {
    Image bytes(256, 1, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    for (unsigned i = 0; i < 256; ++i)
        bytes.getBytes()[i] = static_cast<unsigned char>(i);
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::FLOAT, COMPONENT_TYPE::HALF}) {
        const Image linear = convertImage(bytes.view(), type, 1, COLOR_ENCODING::LINEAR);
        pictures::expectEqual(convertImage(linear.view(), COMPONENT_TYPE::UINT8, 1, COLOR_ENCODING::SRGB),
                              bytes);
    }
}

TEST(ConversionTest, nonsenseGivesTheEmptyPicture) {
    const Image image(2, 2, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    const auto convert = [](const ImageView& view, unsigned channels, COMPONENT_TYPE type) {
        return convertImage(view, type, channels, COLOR_ENCODING::LINEAR);
    };
    EXPECT_TRUE(convert({}, 3, COMPONENT_TYPE::UINT8).isEmpty());
    EXPECT_TRUE(convert(image.view(), 0, COMPONENT_TYPE::UINT8).isEmpty());
    EXPECT_TRUE(convert(image.view(), 5, COMPONENT_TYPE::UINT8).isEmpty());
    EXPECT_TRUE(convert(image.view(), 1, static_cast<COMPONENT_TYPE>(6)).isEmpty());
    ImageView tooShort = image.view();
    tooShort.bytes = tooShort.bytes.first(3);
    EXPECT_TRUE(convert(tooShort, 1, COMPONENT_TYPE::UINT8).isEmpty());
}

// Numbers that only change their places keep all bits, those of NaN included.
TEST(ConversionTest, channelsMoveWithoutChange) {
    const std::array<unsigned, 8> source = {1, 2, 3, 4, 251, 252, 253, 254};
    struct Case {
        unsigned from, to;
        std::vector<int> expected; ///< values of the source by place; -1 is alpha 1
    };
    const Case cases[] = {{1, 2, {0, -1, 1, -1}},
                          {1, 3, {0, 0, 0, 1, 1, 1}},
                          {1, 4, {0, 0, 0, -1}},
                          {2, 1, {0, 2}},
                          {2, 3, {0, 0, 0, 2, 2, 2}},
                          {2, 4, {0, 0, 0, 1, 2, 2, 2, 3}},
                          {3, 4, {0, 1, 2, -1, 3, 4, 5, -1}},
                          {4, 3, {0, 1, 2, 4, 5, 6}}};
    const auto check = [&]<typename STORED>(COMPONENT_TYPE type, STORED one, auto valueOf) {
        for (const Case& current : cases) {
            std::vector<STORED> values;
            for (unsigned i = 0; i < 2 * current.from; ++i)
                values.push_back(valueOf(source[i]));
            const ovMemory::BufferView<const unsigned char> bytes(
                reinterpret_cast<const unsigned char*>(values.data()), values.size() * sizeof(STORED));
            const Image converted = convertImage({2, 1, current.from, type, COLOR_ENCODING::SRGB, bytes},
                                                 type, current.to, COLOR_ENCODING::SRGB);
            for (std::size_t i = 0; i < current.expected.size(); ++i) {
                const int place = current.expected[i];
                const STORED expected = place < 0 ? one : values[static_cast<std::size_t>(place)];
                EXPECT_EQ(std::memcmp(&converted.getBytes()[i * sizeof(STORED)], &expected, sizeof(STORED)),
                          0)
                    << current.from << " to " << current.to << ", " << i;
            }
        }
    };
    check(COMPONENT_TYPE::UINT8, std::uint8_t{255}, [](unsigned v) { return static_cast<std::uint8_t>(v); });
    check(COMPONENT_TYPE::UINT16, std::uint16_t{65535},
          [](unsigned v) { return static_cast<std::uint16_t>(v * 251); });
    check(COMPONENT_TYPE::FLOAT, 1.0f,
          [](unsigned v) { return std::bit_cast<float>(0x7fc00000u + v); }); // each a NaN of its own
}

TEST(ConversionTest, rowsGoWhereTheyAreAskedFor) {
    const Image source = pictures::makePattern(5, 7, 3, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    const Image whole = convertImage(source.view(), COMPONENT_TYPE::UINT8, 4, COLOR_ENCODING::SRGB);
    Image target(5, 7, 4, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    ConversionLosses losses;
    for (const auto& [first, count] : {std::pair{0u, 3u}, {3u, 3u}, {6u, 1u}}) {
        ImageView rows = source.view();
        rows.bytes = rows.bytes.subspan(first * rows.bytes.size() / 7, count * rows.bytes.size() / 7);
        rows.height = count;
        ASSERT_TRUE(convertRows(rows, target, first, losses));
    }
    EXPECT_TRUE(std::ranges::equal(target.getBytes(), whole.getBytes()));

    Image halves(1, 2, 1, COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR);
    const float huge = 1e6f;
    const ImageView pixel = {1,
                             1,
                             1,
                             COMPONENT_TYPE::FLOAT,
                             COLOR_ENCODING::LINEAR,
                             {reinterpret_cast<const unsigned char*>(&huge), sizeof(huge)}};
    losses = {};
    EXPECT_TRUE(convertRows(pixel, halves, 0, losses));
    EXPECT_TRUE(convertRows(pixel, halves, 1, losses));
    EXPECT_EQ(losses.clampedToHalf, 2u) << "they add up";
    EXPECT_EQ(describeLosses(losses),
              "2 components beyond 65504, the largest half float, were clamped to it");
    EXPECT_EQ(describeLosses({}), "");
    EXPECT_FALSE(convertRows(pixel, halves, 2, losses)) << "beyond the last row";
    EXPECT_FALSE(convertRows(pixel, target, 0, losses)) << "of another width";
    EXPECT_FALSE(convertRows({}, halves, 0, losses));
}

} // namespace
