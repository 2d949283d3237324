#include <veldris/demo/Noise.h>

#include <cmath>
#include <gtest/gtest.h>

using ovMaths::Vector;
using veldris::fractalNoise;
using veldris::mixColors;
using veldris::smoothNoise;

TEST(NoiseTest, staysFromZeroToOneAndIsSmooth) {
    constexpr float STEP = 1e-3f;
    double sum = 0.0;
    int count = 0;
    for (float t = -20.0f; t < 20.0f; t += 0.037f) {
        const Vector place(t, 0.7f * t + 3.0f, -1.3f * t);
        const float value = smoothNoise(place);
        ASSERT_GE(value, 0.0f);
        ASSERT_LE(value, 1.0f);
        // The quintic's steepest slope is 15 / 8, along each of three axes.
        ASSERT_LE(std::abs(smoothNoise(place + Vector(STEP, STEP, STEP)) - value),
                  3.0f * 1.875f * STEP + 1e-5f);
        sum += double(value);
        ++count;
    }
    EXPECT_NEAR(sum / count, 0.5, 0.06);
}

TEST(NoiseTest, hasNoSlopeAtTheCornersOfItsLattice) {
    constexpr float STEP = 1e-3f;
    for (int corner = -3; corner < 3; ++corner) {
        const auto at = static_cast<float>(corner);
        const float value = smoothNoise({at, 2.0f, -at});
        EXPECT_NEAR(smoothNoise({at + STEP, 2.0f, -at}), value, 1e-5f);
        EXPECT_NEAR(smoothNoise({at, 2.0f - STEP, -at}), value, 1e-5f);
        EXPECT_NEAR(smoothNoise({at, 2.0f, -at - STEP}), value, 1e-5f);
    }
}

TEST(NoiseTest, octavesAreWeighedByTheirSize) {
    const Vector place(1.3f, 2.7f, -0.4f);
    EXPECT_EQ(fractalNoise(place, 0), 0.0f);
    EXPECT_EQ(fractalNoise(place, 1), smoothNoise(place));
    const float second = smoothNoise(place * 2.0f + Vector(17.3f, 5.1f, -11.7f));
    EXPECT_NEAR(fractalNoise(place, 2), (smoothNoise(place) + 0.5f * second) / 1.5f, 1e-6f);
}

TEST(NoiseTest, mixesColors) {
    const Vector black(0.0f, 0.0f, 0.0f, 1.0f);
    const Vector color(0.2f, 0.4f, 0.8f, 1.0f);
    EXPECT_EQ(mixColors(black, color, 0.5f), Vector(0.1f, 0.2f, 0.4f, 1.0f));
    EXPECT_EQ(mixColors(black, color, -3.0f), black);
    EXPECT_EQ(mixColors(black, color, 7.0f), color);
}
