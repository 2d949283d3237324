#include <ovVeldris/environment/light/detail/LobeSum.h>

#include "support/LightTruth.h"

#include <gtest/gtest.h>
#include <ovVeldris/environment/light/detail/GgxLobe.h>

using namespace ovVeldris;

namespace {

/// A direction for each number, all over the sphere.
lightTruth::Direction scattered(unsigned int i) {
    return lightTruth::normalized(
        {std::sin(1.0 + 2.3 * i), std::cos(0.7 + 3.1 * i), std::sin(2.0 + 1.7 * i)});
}

PointLight lightAt(const lightTruth::Direction& direction, float variance) {
    PointLight light;
    for (std::size_t axis = 0; axis < 3; ++axis)
        light.direction[axis] = static_cast<float>(direction[axis]);
    light.power = {1.0f, 2.0f, 0.25f};
    light.variance = variance;
    return light;
}

/// The second derivative by differences of the weight itself.
double bendOf(double roughness, double cosine) {
    constexpr double STEP = 1e-4;
    return (lightTruth::lobe(roughness, cosine + STEP) - 2.0 * lightTruth::lobe(roughness, cosine) +
            lightTruth::lobe(roughness, cosine - STEP)) /
           (STEP * STEP);
}

TEST(LobeSumTest, sumsLightsForEveryNormal) {
    for (const bool useAvx2 : {false, true}) {
        if (useAvx2 && !canLobeSumUseAvx2())
            continue;
        for (const double roughness : {0.3, 0.6, 1.0}) {
            SCOPED_TRACE(roughness);
            const GgxLobe lobe = ggxLobeOf(roughness);
            LobeSums sums;
            for (unsigned int lane = 0; lane < LOBE_LANES; ++lane) {
                const auto normal = scattered(lane);
                for (std::size_t axis = 0; axis < 3; ++axis)
                    sums.normals[axis][lane] = static_cast<float>(normal[axis]);
            }
            sums.sums[2].fill(0.5f); // what was summed before stays
            ovMemory::Buffer<PointLight> lights;
            constexpr float VARIANCE = 0.01f;
            for (unsigned int i = 0; i < 21; ++i)
                lights.push_back(lightAt(scattered(100 + i), i % 3 == 0 ? VARIANCE : 0.0f));
            lobeSumOf(useAvx2)(lights,
                               {static_cast<float>(lobe.flatness), static_cast<float>(lobe.steepness)}, sums);
            for (unsigned int lane = 0; lane < LOBE_LANES; ++lane) {
                double expected = 0.0;
                for (unsigned int i = 0; i < 21; ++i) {
                    const double cosine = lightTruth::dot(scattered(lane), scattered(100 + i));
                    expected += lightTruth::lobe(roughness, cosine);
                    if (i % 3 == 0 && cosine > 0.0)
                        expected += 0.5 * VARIANCE * (1.0 - cosine * cosine) * bendOf(roughness, cosine);
                }
                const double limit = 2e-5 * std::max(1.0, expected);
                EXPECT_NEAR(sums.sums[0][lane], expected, limit) << lane;
                EXPECT_NEAR(sums.sums[1][lane], 2.0 * expected, 2.0 * limit) << lane;
                EXPECT_NEAR(sums.sums[2][lane], 0.5 + 0.25 * expected, limit) << lane;
            }
        }
    }
}

} // namespace
