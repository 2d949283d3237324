#include <ovVeldris/environment/light/EnvironmentIrradiance.h>

#include "support/LightTruth.h"

#include <algorithm>
#include <gtest/gtest.h>

using lightTruth::Sky;
using ovVeldris::EnvironmentTexels;
using ovVeldris::IrradianceCoefficients;

namespace {

std::vector<Sky> skies() {
    std::vector<Sky> all;
    all.push_back({"hard sun, panorama", lightTruth::hardSunPanorama(96), false});
    all.push_back({"hard sun, cube", lightTruth::hardSunFaces(48), true});
    all.push_back({"hard sun, odd cube", lightTruth::hardSunFaces(31), true});
    all.push_back({"bright pole", lightTruth::oneBrightTexel(37, 20, 11, 0), false});
    all.push_back({"bright seam", lightTruth::oneBrightTexel(64, 32, 63, 12), false});
    all.push_back({"bright corner", lightTruth::oneBrightTexel(16, 96, 15, 47), true});
    return all;
}

IrradianceCoefficients project(const Sky& sky) {
    const EnvironmentTexels texels(sky.image.view(), sky.isCube);
    EXPECT_TRUE(texels.isValid());
    return ovVeldris::projectEnvironment(texels);
}

TEST(EnvironmentIrradianceTest, everyTexelCountsByItsSolidAngle) {
    for (const Sky& sky : skies()) {
        SCOPED_TRACE(sky.name);
        const IrradianceCoefficients coefficients = project(sky);
        const auto expected = lightTruth::coefficientsOf(lightTruth::lightsOf(sky.image, sky.isCube));
        for (std::size_t channel = 0; channel < 3; ++channel) {
            double largest = 0.0;
            for (const auto& truth : expected)
                largest = std::max(largest, std::abs(truth[channel]));
            for (std::size_t k = 0; k < 9; ++k)
                // Solid angles are 32-bit floats, and so are the digits of the library's basis: 4e-8.
                EXPECT_NEAR(coefficients.values[k][channel], expected[k][channel], 2e-7 * largest) << k;
        }
    }
}

TEST(EnvironmentIrradianceTest, threadsDoNotChangeTheBits) {
    const Sky sky = {"", lightTruth::hardSunPanorama(64), false};
    const IrradianceCoefficients first = project(sky);
    for (int round = 0; round < 10; ++round)
        EXPECT_EQ(project(sky).values, first.values);
}

TEST(EnvironmentIrradianceTest, cubesShowTheMiddleOfEachTexel) {
    const Sky sky = skies().front();
    const auto expected = lightTruth::coefficientsOf(lightTruth::lightsOf(sky.image, sky.isCube));
    const IrradianceCoefficients coefficients = project(sky);
    for (const unsigned int side : {1u, 2u, 5u, 32u}) {
        const ovImages::Image cube = ovVeldris::drawIrradianceCube(coefficients, side);
        ASSERT_EQ(cube.getWidth(), side);
        ASSERT_EQ(cube.getHeight(), 6 * side);
        ASSERT_EQ(cube.getChannels(), 4u);
        for (unsigned int y = 0; y < 6 * side; ++y) {
            for (unsigned int x = 0; x < side; ++x) {
                const auto truth = lightTruth::irradiance(
                    expected, lightTruth::faceDirection(y / side, side, x + 0.5, y % side + 0.5));
                for (unsigned int channel = 0; channel < 3; ++channel)
                    EXPECT_NEAR(cube.getComponent(x, y, channel), truth[channel],
                                1e-6 * std::abs(expected[0][0]));
                EXPECT_EQ(cube.getComponent(x, y, 3), 1.0f);
            }
        }
    }
}

} // namespace
