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

TEST(PanoramasTest, photographsAreReversedAndTurned) {
    ovImages::Image photograph(4, 2, 1, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 2; ++y)
        for (unsigned int x = 0; x < 4; ++x)
            photograph.setComponent(x, y, 0, static_cast<float>(10 * y + x));
    struct Case {
        float degrees;
        float firstRow[4];
    };
    const Case cases[] = {{0.0f, {3, 2, 1, 0}},    {90.0f, {2, 1, 0, 3}},  {-90.0f, {0, 3, 2, 1}},
                          {180.0f, {1, 0, 3, 2}},  {360.0f, {3, 2, 1, 0}}, {40.0f, {3, 2, 1, 0}},
                          {-630.0f, {2, 1, 0, 3}}, {50.0f, {2, 1, 0, 3}}};
    for (const Case& current : cases) {
        const ovImages::Image turned = veldris::turnedPhotograph(photograph.view(), current.degrees);
        for (unsigned int x = 0; x < 4; ++x) {
            EXPECT_EQ(turned.getComponent(x, 0, 2), current.firstRow[x]) << current.degrees << ' ' << x;
            EXPECT_EQ(turned.getComponent(x, 1, 0), current.firstRow[x] + 10.0f)
                << current.degrees << ' ' << x;
            EXPECT_EQ(turned.getComponent(x, 1, 3), 1.0f);
        }
    }
    const ovImages::Image once = veldris::turnedPhotograph(photograph.view());
    const ovImages::Image twice = veldris::turnedPhotograph(once.view());
    EXPECT_EQ(twice.getComponent(3, 1, 0), photograph.getComponent(3, 1, 0)) << "twice is as before";
    EXPECT_TRUE(veldris::turnedPhotograph({}).isEmpty());
}

TEST(PanoramasTest, turningBackIsTurningOn) {
    // Seven columns: 2^32 is no multiple of them, and a shift below 0 that wrapped round would be another.
    ovImages::Image photograph(7, 1, 1, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int x = 0; x < 7; ++x)
        photograph.setComponent(x, 0, 0, static_cast<float>(x));
    for (const float degrees : {-10.0f, -60.0f, -155.0f, -359.0f}) {
        const ovImages::Image back = veldris::turnedPhotograph(photograph.view(), degrees);
        const ovImages::Image on = veldris::turnedPhotograph(photograph.view(), degrees + 360.0f);
        for (unsigned int x = 0; x < 7; ++x)
            EXPECT_EQ(back.getComponent(x, 0, 0), on.getComponent(x, 0, 0)) << degrees << ' ' << x;
    }
}

TEST(PanoramasTest, photographsOfAnyPixelsTurnInPlace) {
    for (const auto type : {ovImages::COMPONENT_TYPE::UINT8, ovImages::COMPONENT_TYPE::FLOAT}) {
        for (const unsigned int channels : {1u, 3u, 4u}) {
            ovImages::Image photograph(5, 3, channels, type, ovImages::COLOR_ENCODING::LINEAR);
            for (unsigned int y = 0; y < 3; ++y)
                for (unsigned int x = 0; x < 5; ++x)
                    for (unsigned int channel = 0; channel < channels; ++channel)
                        photograph.setComponent(x, y, channel,
                                                static_cast<float>(50 * y + 10 * x + channel) / 255.0f);
            const ovImages::Image before = photograph;
            veldris::turnPhotograph(photograph, 144.0f); // two columns
            for (unsigned int y = 0; y < 3; ++y)
                for (unsigned int x = 0; x < 5; ++x)
                    for (unsigned int channel = 0; channel < channels; ++channel)
                        EXPECT_EQ(photograph.getComponent(x, y, channel),
                                  before.getComponent((7 - x) % 5, y, channel));
        }
    }
    ovImages::Image nothing;
    veldris::turnPhotograph(nothing);
    EXPECT_TRUE(nothing.isEmpty());
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
