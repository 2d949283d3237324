#include <veldris/scene/Panoramas.h>

#include <cmath>
#include <gtest/gtest.h>

namespace {

using ovMaths::Vector;

TEST(PanoramasTest, putDirectionsWhereFiltersReadThem) {
    constexpr unsigned int WIDTH = 64;
    const ovImages::Image panorama =
        veldris::drawPanorama(WIDTH, [](const Vector& direction) { return direction; });
    ASSERT_EQ(panorama.getWidth(), WIDTH);
    ASSERT_EQ(panorama.getHeight(), WIDTH / 2);
    constexpr double PI = 3.14159265358979;
    for (unsigned int y = 0; y < WIDTH / 2; ++y) {
        for (unsigned int x = 0; x < WIDTH; ++x) {
            const Vector direction(panorama.getComponent(x, y, 0), panorama.getComponent(x, y, 1),
                                   panorama.getComponent(x, y, 2));
            EXPECT_NEAR(direction.getLengthVec3(), 1.0f, 1e-5f);
            EXPECT_NEAR(0.5 + std::atan2(direction.z, direction.x) / (2.0 * PI), (x + 0.5) / WIDTH, 1e-5);
            EXPECT_NEAR(0.5 - std::asin(direction.y) / PI, (y + 0.5) / (WIDTH / 2), 1e-5);
        }
    }
}

TEST(PanoramasTest, theStudioHasLampsInADarkRoom) {
    const Vector lamp = veldris::studioRadiance(Vector(-0.8f, 0.35f, -0.5f).getNormalizedVec3());
    EXPECT_GT(lamp.x, 5.0f);
    EXPECT_GT(lamp.x, lamp.z) << "warm on the left";
    const Vector right = veldris::studioRadiance(Vector(0.9f, 0.2f, -0.4f).getNormalizedVec3());
    EXPECT_GT(right.z, right.x) << "cool on the right";
    EXPECT_LT(veldris::studioRadiance({0.0f, -1.0f, 0.0f}).y, 0.1f);
}

TEST(PanoramasTest, duskGlowsOnOneSide) {
    const Vector glow = veldris::duskRadiance(Vector(-0.6f, 0.05f, 0.8f).getNormalizedVec3());
    const Vector away = veldris::duskRadiance(Vector(0.6f, 0.05f, -0.8f).getNormalizedVec3());
    EXPECT_GT(glow.x, 10.0f * away.x);
    EXPECT_GT(glow.x, glow.z);
    EXPECT_GT(away.z, away.x);
    EXPECT_LT(veldris::duskRadiance({0.0f, -1.0f, 0.0f}).x, 0.03f);
}

} // namespace
