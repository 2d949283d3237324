// The bytes through the conversion of pictures, which stores them.
#include <ovImages/Conversion.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <support/Numbers.h>
#include <vector>

namespace {

/// IEC 61966-2-1 in double precision, times 255, not rounded.
double exactByte(double linear) {
    const double encoded = linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
    return encoded * 255.0;
}

std::vector<int> encodeAll(const std::vector<float>& linear) {
    using namespace ovImages;
    const auto width = static_cast<unsigned>(linear.size());
    const ovMemory::BufferView<const unsigned char> bytes(
        reinterpret_cast<const unsigned char*>(linear.data()), linear.size() * sizeof(float));
    const Image encoded = convertImage({width, 1, 1, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR, bytes},
                                       COMPONENT_TYPE::UINT8, 1, COLOR_ENCODING::SRGB);
    return {encoded.getBytes().begin(), encoded.getBytes().end()};
}

} // namespace

TEST(SrgbBytesTest, roundsToTheNearestByte) {
    // What floats lose between light and byte, in steps of bytes.
    constexpr double TOLERANCE = 0.5 + 1e-4;
    constexpr int COUNT = 1'000'003; // a prime: no two places fall on the same fraction of an interval
    std::vector<float> linear;
    for (int i = 0; i <= COUNT; ++i)
        linear.push_back(static_cast<float>(i) / static_cast<float>(COUNT));
    const std::vector<int> bytes = encodeAll(linear);
    ASSERT_EQ(bytes.size(), linear.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_NEAR(bytes[i], exactByte(static_cast<double>(linear[i])), TOLERANCE) << linear[i];
    EXPECT_EQ(bytes.front(), 0);
    EXPECT_EQ(bytes.back(), 255);
}

TEST(SrgbBytesTest, isThePowerOfFloatsRounded) {
    // On both sides of each step, where a table could be off by one.
    std::vector<float> linear;
    for (int byte = 0; byte < 255; ++byte) {
        const double encoded = (byte + 0.5) / 255.0;
        const double step = encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
        float place = static_cast<float>(step);
        for (int i = 0; i < 40; ++i)
            place = std::nextafter(place, 0.0f);
        for (int i = 0; i < 80; ++i, place = std::nextafter(place, 1.0f))
            linear.push_back(place);
    }
    const std::vector<int> bytes = encodeAll(linear);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(bytes[i], static_cast<int>(ovImages::linearToSrgb(linear[i]) * 255.0f + 0.5f)) << linear[i];
}

TEST(SrgbBytesTest, whatLiesOutsideIsClamped) {
    struct Case {
        float linear;
        int byte;
    };
    const Case cases[] = {{0.0f, 0},
                          {-0.0f, 0},
                          {-1.0f, 0},
                          {-INFINITE, 0},
                          {std::numeric_limits<float>::quiet_NaN(), 0},
                          {std::numeric_limits<float>::denorm_min(), 0},
                          {std::nextafter(1.0f, 0.0f), 255},
                          {1.0f, 255},
                          {7.0f, 255},
                          {INFINITE, 255}};
    for (const Case& current : cases)
        EXPECT_EQ(encodeAll({current.linear}), std::vector<int>{current.byte}) << current.linear;
}
