#include <veldris/sky/SkyGround.h>

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using namespace veldris;

/// Degrees below the level at which the ground begins.
double dipOf(double eyeHeight) {
    const ovImages::Image panorama = drawGroundPanorama({0.5f, 0.25f, 2.0f}, eyeHeight);
    unsigned int row = 0;
    while (panorama.getComponent(0, row, 0) == 0.0f)
        ++row;
    for (unsigned int y = 0; y < panorama.getHeight(); ++y) {
        const bool isGround = y >= row;
        EXPECT_EQ(panorama.getComponent(0, y, 0), isGround ? 0.5f : 0.0f) << y;
        EXPECT_EQ(panorama.getComponent(0, y, 1), isGround ? 0.25f : 0.0f) << y;
        EXPECT_EQ(panorama.getComponent(0, y, 2), isGround ? 2.0f : 0.0f) << y;
        EXPECT_EQ(panorama.getComponent(0, y, 3), 1.0f) << y;
    }
    return 180.0 * row / panorama.getHeight() - 90.0;
}

TEST(SkyGroundTest, theHorizonLiesTheLowerTheHigherTheEye) {
    // acos(R / (R + h)), and one or two rows higher.
    const double row = 180.0 / 4096;
    EXPECT_NEAR(dipOf(2.0), 0.0454 - 1.5 * row, 0.5 * row);
    EXPECT_NEAR(dipOf(-1000.0), 0.0 - 1.5 * row, 0.5 * row);
    EXPECT_NEAR(dipOf(200.0), 0.4544 - 1.5 * row, 0.5 * row);
    EXPECT_NEAR(dipOf(10e3), 3.2103 - 1.5 * row, 0.5 * row);
    EXPECT_NEAR(dipOf(400e3), 19.787 - 1.5 * row, 0.5 * row);
}

/// Six faces with a radiance by the direction's height; below the level it is huge.
ovImages::Image makeFaces(unsigned int side, const std::function<float(double y)>& radiance) {
    ovImages::Image faces(side, 6 * side, 4, ovImages::COMPONENT_TYPE::FLOAT,
                          ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int row = 0; row < 6 * side; ++row)
        for (unsigned int column = 0; column < side; ++column) {
            const double a = (2.0 * column + 1.0) / side - 1.0;
            const double b = (2.0 * (row % side) + 1.0) / side - 1.0;
            const unsigned int face = row / side;
            const double y = (face == 2 ? 1.0 : face == 3 ? -1.0 : -b) / std::sqrt(1.0 + a * a + b * b);
            for (unsigned int channel = 0; channel < 3; ++channel)
                faces.setComponent(column, row, channel, y > 0 ? float(channel + 1) * radiance(y) : 1e6f);
        }
    return faces;
}

TEST(SkyGroundTest, levelIrradianceIsTheIntegralOfTheUpperHalf) {
    constexpr double PI = std::numbers::pi;
    const auto one = levelIrradiance(makeFaces(32, [](double) { return 1.0f; }).view());
    EXPECT_NEAR(one.x, PI, 2e-3); // the middle of a texel stands for it
    EXPECT_NEAR(one.y, 2.0 * PI, 4e-3);
    EXPECT_NEAR(one.z, 3.0 * PI, 6e-3);
    const auto rising = levelIrradiance(makeFaces(32, [](double y) { return float(y); }).view());
    EXPECT_NEAR(rising.x, 2.0 * PI / 3.0, 2e-3);
}

} // namespace
