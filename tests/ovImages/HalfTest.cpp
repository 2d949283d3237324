#include <ovImages/Half.h>

#include <half.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <support/Numbers.h>

namespace {

using ovImages::floatToHalf;
using ovImages::halfToFloat;

// Imath's half is the reference: the type that OpenEXR defines.
float referenceToFloat(std::uint16_t bits) {
    half value;
    value.setBits(bits);
    return value;
}

void expectLikeReference(float value) {
    const std::uint16_t actual = floatToHalf(value);
    if (std::isnan(value)) {
        EXPECT_TRUE(std::isnan(referenceToFloat(actual)));
        EXPECT_EQ(std::signbit(value), (actual & 0x8000u) != 0);
        return;
    }
    ASSERT_EQ(actual, half(value).bits()) << value;
}

TEST(HalfTest, everyHalfBecomesItsFloatAndReturns) {
    for (unsigned bits = 0; bits <= 0xffff; ++bits) {
        const auto stored = static_cast<std::uint16_t>(bits);
        const float expected = referenceToFloat(stored);
        const float actual = halfToFloat(stored);
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(actual));
            // A signalling NaN returns quiet.
            EXPECT_EQ(floatToHalf(actual), stored | 0x0200u);
            continue;
        }
        ASSERT_EQ(std::bit_cast<std::uint32_t>(actual), std::bit_cast<std::uint32_t>(expected)) << bits;
        ASSERT_EQ(floatToHalf(actual), stored);
    }
}

TEST(HalfTest, roundsToTheNearestHalfWithTiesToEven) {
    for (unsigned bits = 0; bits < 0x7bff; ++bits) {
        const float low = referenceToFloat(static_cast<std::uint16_t>(bits));
        const float high = referenceToFloat(static_cast<std::uint16_t>(bits + 1));
        const float middle = low + (high - low) / 2.0f;
        for (const float value : {middle, std::nextafter(middle, 0.0f), std::nextafter(middle, 1e30f)}) {
            expectLikeReference(value);
            expectLikeReference(-value);
        }
    }
    std::mt19937 random(7);
    for (int i = 0; i < 1000000; ++i)
        expectLikeReference(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
}

TEST(HalfTest, edges) {
    struct Case {
        float value;
        std::uint16_t expected;
    };
    const Case cases[] = {{0.0f, 0x0000},          {-0.0f, 0x8000},           {1.0f, 0x3c00},
                          {65504.0f, 0x7bff},      {65519.996f, 0x7bff},      {65520.0f, 0x7c00},
                          {INFINITE, 0x7c00},      {-INFINITE, 0xfc00},       {0x1p-24f, 0x0001},
                          {0x1p-25f, 0x0000},      {0x1.000002p-25f, 0x0001}, {0x1p-14f, 0x0400},
                          {-0x1.ff8p-15f, 0x83ff}, {0x1.ffcp-15f, 0x0400},    {1e-45f, 0x0000}};
    for (const Case& c : cases)
        EXPECT_EQ(floatToHalf(c.value), c.expected) << c.value;
}

} // namespace
