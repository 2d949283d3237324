#include <ovVeldris/complexEffects/BlurKernel.h>

#include <gtest/gtest.h>
#include <numeric>
#include <ovVeldris/complexEffects/BlurReference.h>

using namespace ovVeldris;

TEST(BlurKernelTest, WeightsAreARowOfPascalsTriangle) {
    for (unsigned int radius = 0; radius <= 64; ++radius) {
        const auto weights = computeBlurWeights(radius);
        const auto expected = blurReference::weightsOf(radius);
        ASSERT_EQ(weights.size(), expected.size());
        // A rounding for each factor of a coefficient.
        for (std::size_t i = 0; i < weights.size(); ++i)
            EXPECT_NEAR(weights[i] / expected[i], 1.0, 1e-16 * (radius + 10.0)) << radius << ", " << i;
    }
}

TEST(BlurKernelTest, WeightsSumToOneUpToTheLargestRadius) {
    for (const unsigned int radius : {0u, 1u, 2u, 31u, 64u, 255u, 509u, MAX_BLUR_RADIUS}) {
        const auto weights = computeBlurWeights(radius);
        EXPECT_NEAR(2.0 * std::accumulate(weights.begin(), weights.end(), 0.0) - weights[0], 1.0, 1e-12)
            << radius;
        EXPECT_GT(weights.back(), 0.0) << radius;
    }
}

TEST(BlurKernelTest, KernelsBeyondTheLargestRadiusHaveNoNumbers) {
    for (const double weight : computeBlurWeights(MAX_BLUR_RADIUS + 1))
        EXPECT_FALSE(weight > 0.0) << "the sum is infinite";
}

TEST(BlurKernelTest, TapsStandForPairsOfNeighbours) {
    for (unsigned int radius = 0; radius <= 64; ++radius) {
        const auto weights = computeBlurWeights(radius);
        const BlurTaps taps = mergeBlurTaps(weights);
        const bool isEven = radius % 2 == 0;
        ASSERT_EQ(taps.weights.size(), isEven ? radius / 2 + 1 : (radius + 1) / 2) << radius;
        ASSERT_EQ(taps.offsets.size(), taps.weights.size());
        // What a fetch gives to its two texels, summed over the fetches of one side and the centre.
        std::vector<double> given(radius + 2);
        for (std::size_t i = 0; i < taps.weights.size(); ++i) {
            const std::size_t nearer = isEven ? (i == 0 ? 0 : 2 * i - 1) : 2 * i;
            const double both = nearer == 0 && !isEven ? 2.0 : 1.0; // the centre is fetched from both sides
            given[nearer] += both * taps.weights[i] * (1.0 - taps.offsets[i]);
            given[nearer + 1] += taps.weights[i] * taps.offsets[i];
        }
        for (std::size_t i = 0; i < weights.size(); ++i)
            EXPECT_NEAR(given[i], weights[i], 1e-16) << radius << ", " << i;
        EXPECT_EQ(given[radius + 1], 0.0);
    }
}

TEST(BlurKernelTest, DescribesTapsInSixDecimals) {
    const std::pair<unsigned int, const char*> CASES[] = {
        {0, "#define OFFSET_COUNT 1\n#define OFFSET_FACTORS 0.000000\n"
            "#define WEIGHT_COUNT 1\n#define WEIGHT_FACTORS 1.000000\n"},
        {1, "#define OFFSET_COUNT 1\n#define OFFSET_FACTORS 0.571429\n"
            "#define WEIGHT_COUNT 1\n#define WEIGHT_FACTORS 0.500000\n"},
        {2, "#define OFFSET_COUNT 2\n#define OFFSET_FACTORS 0.000000,0.285714\n"
            "#define WEIGHT_COUNT 2\n#define WEIGHT_FACTORS 0.322581,0.338710\n"},
        // n = 8: (70, 56, 28, 8) / 254; halved: 35 + 56 = 91 at 56/91, then 28 + 8 = 36 at 8/36.
        {3, "#define OFFSET_COUNT 2\n#define OFFSET_FACTORS 0.615385,0.222222\n"
            "#define WEIGHT_COUNT 2\n#define WEIGHT_FACTORS 0.358268,0.141732\n"},
    };
    for (const auto& [radius, text] : CASES)
        EXPECT_EQ(describeBlurTaps(mergeBlurTaps(computeBlurWeights(radius))), text) << radius;
}

TEST(BlurKernelTest, TheDrawnKernelSumsToOneWithinItsDecimals) {
    for (unsigned int radius = 0; radius <= MAX_BLUR_RADIUS; radius += radius < 64 ? 1 : 89) {
        const BlurTaps taps = mergeBlurTaps(computeBlurWeights(radius));
        double sum = 0.0;
        for (const double weight : taps.weights)
            sum += 2.0 * std::round(weight * 1e6) / 1e6;
        const double fetches = 2.0 * double(taps.weights.size());
        if (radius % 2 == 0)
            sum -= std::round(taps.weights[0] * 1e6) / 1e6;
        EXPECT_NEAR(sum, 1.0, 5e-7 * fetches) << radius;
    }
}
