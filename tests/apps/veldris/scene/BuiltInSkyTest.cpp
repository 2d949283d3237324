#include <veldris/scene/BuiltInSky.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using ovMaths::Vector;

const Vector TOWARDS_SUN = Vector(1.0f, 0.4f, 0.5f).getNormalizedVec3();

TEST(BuiltInSkyTest, isBlueAboveWarmAtTheHorizonAndDullBelow) {
    const Vector above = veldris::skyRadiance({0.0f, 1.0f, 0.0f}, TOWARDS_SUN);
    EXPECT_GT(above.z, 2.0f * above.x);
    const Vector horizon = veldris::skyRadiance({-1.0f, 0.0f, 0.0f}, TOWARDS_SUN);
    EXPECT_GT(horizon.x, horizon.z);
    const Vector below = veldris::skyRadiance({0.0f, -1.0f, 0.0f}, TOWARDS_SUN);
    EXPECT_LT(below.x, 0.3f);
    const Vector sun = veldris::skyRadiance(TOWARDS_SUN, TOWARDS_SUN);
    EXPECT_GT(sun.y, 4.0f * above.y);
}

TEST(BuiltInSkyTest, groundMeetsSkyWithoutAStep) {
    const Vector over = veldris::skyRadiance(Vector(-1.0f, 1e-6f, 0.0f), TOWARDS_SUN);
    const Vector under = veldris::skyRadiance(Vector(-1.0f, -1e-6f, 0.0f), TOWARDS_SUN);
    EXPECT_LT(Vector::distanceVec3(over, under), 0.01f);
}

TEST(BuiltInSkyTest, thePanoramaPutsDirectionsWhereFiltersReadThem) {
    constexpr unsigned int WIDTH = 128;
    const ovImages::Image panorama = veldris::drawSkyPanorama(WIDTH, TOWARDS_SUN);
    ASSERT_EQ(panorama.getHeight(), WIDTH / 2);
    // The brightest texel is where longitude 0.5 + atan2(z, x) / 2 pi and latitude 0.5 - asin(y) / pi say.
    unsigned int brightestX = 0;
    unsigned int brightestY = 0;
    for (unsigned int y = 0; y < WIDTH / 2; ++y) {
        for (unsigned int x = 0; x < WIDTH; ++x) {
            EXPECT_EQ(panorama.getComponent(x, y, 3), 1.0f);
            if (panorama.getComponent(x, y, 0) > panorama.getComponent(brightestX, brightestY, 0)) {
                brightestX = x;
                brightestY = y;
            }
        }
    }
    constexpr double PI = 3.14159265358979;
    const double u = 0.5 + std::atan2(TOWARDS_SUN.z, TOWARDS_SUN.x) / (2.0 * PI);
    const double v = 0.5 - std::asin(TOWARDS_SUN.y) / PI;
    EXPECT_NEAR(brightestX + 0.5, u * WIDTH, 1.0);
    EXPECT_NEAR(brightestY + 0.5, v * WIDTH / 2, 1.0);
    EXPECT_TRUE(
        std::ranges::equal(panorama.getBytes(), veldris::drawSkyPanorama(WIDTH, TOWARDS_SUN).getBytes()));
}

} // namespace
