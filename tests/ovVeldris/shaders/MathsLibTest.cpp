#include <ovVeldris/shaders/MathsLib.h>

#include <bit>
#include <cmath>
#include <ovVeldris/shaders/SnippetTest.h>

using ovVeldris::MathsLib;

namespace {

class MathsLibTest : public SnippetTest {};
INSTANTIATE_TEST_SUITE_P(, MathsLibTest, bothLanguages(), languageName);

} // namespace

TEST(MathsLibTextTest, ConstantsAreOneDefine) {
    EXPECT_EQ(MathsLib::ovMathsConstants(), "#define OV_PI 3.1415926535");
}

TEST_P(MathsLibTest, Constants) {
    const FloatPicture actual = evaluate(
        joinLines({MathsLib::ovMathsConstants(),
                   "ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) { return ovFloat4(OV_PI, 0.0, 0.0, 0.0); }"}),
        {{}});
    EXPECT_EQ(actual.at(0, 0)[0], std::acos(-1.0f));
}

TEST_P(MathsLibTest, SafeAcos) {
    FloatPixels inputs;
    for (int i = -1000; i <= 1000; ++i)
        inputs.push_back({float(i) / 1000.0f});
    for (const float outside : {1.0000001f, 2.0f, 1e30f, INFINITY})
        for (const float sign : {-1.0f, 1.0f})
            inputs.push_back({sign * outside});

    const FloatPicture actual =
        evaluate(joinLines({MathsLib::ovSafeAcos(), MathsLib::ovSafeAcos(),
                            "ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {",
                            "    return ovFloat4(ovSafeAcos(a.x), 0.0, 0.0, 0.0);", "}"}),
                 inputs);
    const FloatPicture expected = toPicture(inputs).map([](const FloatPixel& pixel) -> FloatPixel {
        return {float(std::acos(std::fmin(std::fmax(double(pixel[0]), -1.0), 1.0)))};
    });
    // Languages promise 4096 units in the last place for acos; the software rasteriser's polynomial is off by
    // up to 3e-4.
    EXPECT_TRUE(picturesMatch("safe_acos", actual, expected, {.worst = 3e-4f, .mean = 5e-5f}));
}

TEST_P(MathsLibTest, IsNan) {
    const std::pair<uint32_t, bool> cases[] = {
        {0x7f800001u, true},                                              // the smallest NaN, signalling
        {0x7fbfffffu, true},                                              // the largest signalling NaN
        {0x7fc00000u, true},                                              // the usual quiet NaN
        {0x7fffffffu, true},                                              // the largest NaN
        {0xff800001u, true},                                              // the same, negative
        {0xffc00000u, true},  {0xffffffffu, true},  {0x7f800000u, false}, // infinity
        {0xff800000u, false},                                             // minus infinity
        {0x7f7fffffu, false},                                             // the largest number
        {0xff7fffffu, false}, {0x00000001u, false},                       // the smallest denormal
        {0x807fffffu, false},                                             // the largest denormal, negative
        {0x00800000u, false},                                             // the smallest normal number
        {0x00000000u, false}, {0x80000000u, false}, {0x3f800000u, false}, // one
    };
    FloatPixels inputs;
    FloatPixels expected;
    for (const auto& [bits, isNan] : cases) {
        inputs.push_back({std::bit_cast<float>(bits)});
        expected.push_back({isNan ? 1.0f : 0.0f});
    }
    const FloatPicture actual = evaluate(
        joinLines({MathsLib::ovIsNan(), MathsLib::ovIsNan(), "ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {",
                   "    return ovFloat4(ovIsNan(a.x) ? 1.0 : 0.0, 0.0, 0.0, 0.0);", "}"}),
        inputs);
    EXPECT_TRUE(picturesAreIdentical("is_nan", actual, toPicture(expected)));
}

TEST_P(MathsLibTest, ComputeLinearDepth) {
    const std::pair<double, double> planes[] = {{0.1, 100.0}, {0.5, 10.0}, {1.0, 2.0}, {0.01, 1000.0}};
    FloatPixels inputs;
    FloatPixels expected;
    for (const auto& [near, far] : planes) {
        const float a = float(far / (far - near));
        const float b = float(-near / (far - near));
        for (int i = 0; i <= 100; ++i) {
            const float depth = float(i) / 100.0f;
            // The depth buffer's (A z + B far) / z, solved for z / far, with the numbers that the shader
            // gets.
            inputs.push_back({depth, a, b});
            expected.push_back({float(double(b) / (double(depth) - double(a)))});
        }
    }
    const FloatPicture actual =
        evaluate(joinLines({MathsLib::ovComputeLinearDepth(), MathsLib::ovComputeLinearDepth(),
                            "ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {",
                            "    return ovFloat4(ovComputeLinearDepth(a.x, a.y, a.z), 0.0, 0.0, 0.0);", "}"}),
                 inputs);
    // A difference and a quotient, each rounded once: relative errors of 2^-24 and, for a division by
    // multiplication with the reciprocal, some more.
    EXPECT_TRUE(picturesMatch("linear_depth", actual, toPicture(expected),
                              {.worst = 5e-7f, .mean = 2e-7f, .floor = 1e-6f}));
    for (std::size_t i = 0; i < std::size(planes); ++i) {
        const auto& [near, far] = planes[i];
        // At the far plane the rounding of A weighs (far - near) / near times as much.
        const double farError = 2e-7 * far / near;
        EXPECT_NEAR(actual.pixels[i * 101][0], near / far, 1e-6 * near / far);
        EXPECT_NEAR(actual.pixels[i * 101 + 100][0], 1.0, farError);
    }
}
