#include <ovVeldris/environment/light/detail/GgxLobe.h>

#include "support/LightTruth.h"

#include <gtest/gtest.h>

namespace {

TEST(GgxLobeTest, isTheDensityTimesTheCosine) {
    for (const double roughness : {0.09, 0.125, 1.0 / 3.0, 0.5, 0.9, 0.999999, 1.0}) {
        SCOPED_TRACE(roughness);
        const ovVeldris::GgxLobe lobe = ovVeldris::ggxLobeOf(roughness);
        for (const double cosine : {0.01, 0.3, 0.9, 0.9999, 1.0}) {
            const double root = lobe.flatness - lobe.steepness * cosine;
            EXPECT_NEAR(cosine / (root * root) / lightTruth::lobe(roughness, cosine), 1.0, 1e-9);
        }
        EXPECT_NEAR(lobe.integral / lightTruth::lobeIntegral(roughness), 1.0, 1e-6);
    }
}

TEST(GgxLobeTest, hasFallenToAQuarterAtItsWidth) {
    for (const double roughness : {0.09, 0.2, 0.4}) {
        const double width = ovVeldris::ggxLobeOf(roughness).width;
        const double cosine = 1.0 - 0.5 * width * width; // of an angle with this chord
        // Without the cosine, which is the light's own.
        EXPECT_NEAR(lightTruth::lobe(roughness, cosine) / cosine / lightTruth::lobe(roughness, 1.0), 0.25,
                    1e-9);
    }
    EXPECT_EQ(ovVeldris::ggxLobeOf(1.0).width, 1.0);
    EXPECT_LE(ovVeldris::ggxLobeOf(0.8).width, 1.0);
}

} // namespace
