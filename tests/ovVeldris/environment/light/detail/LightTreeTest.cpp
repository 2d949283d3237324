#include <ovVeldris/environment/light/detail/LightTree.h>

#include "support/LightTruth.h"

#include <gtest/gtest.h>

using ovVeldris::EnvironmentTexels;
using ovVeldris::LightTree;
using ovVeldris::PointLight;

namespace {

ovMemory::Buffer<PointLight> gathered(const ovImages::Image& image, bool isCube,
                                      const ovVeldris::Direction& middle, double width) {
    const EnvironmentTexels texels(image.view(), isCube);
    const LightTree tree(texels, width);
    ovMemory::Buffer<PointLight> lights;
    tree.gather(middle, 0.01, width, lights);
    return lights;
}

TEST(LightTreeTest, noLightIsLostOrCountedTwice) {
    struct Case {
        ovImages::Image image;
        bool isCube;
    };
    const Case cases[] = {{lightTruth::hardSunPanorama(100), false},
                          {lightTruth::oneBrightTexel(1, 1, 0, 0), false},
                          {lightTruth::oneBrightTexel(301, 3, 7, 1), false},
                          {lightTruth::hardSunFaces(33), true},
                          {lightTruth::oneBrightTexel(1, 6, 0, 2), true}};
    for (const Case& row : cases) {
        const auto truth = lightTruth::lightsOf(row.image, row.isCube);
        for (const double width : {0.02, 0.2, 1.0}) {
            const auto lights = gathered(row.image, row.isCube, {0.6, 0.0, 0.8}, width);
            for (std::size_t color = 0; color < 3; ++color) {
                double power = 0.0;
                lightTruth::Direction moment = {};
                for (const PointLight& light : lights) {
                    power += light.power[color];
                    for (std::size_t axis = 0; axis < 3; ++axis)
                        moment[axis] += light.power[color] * light.direction[axis];
                }
                double expected = 0.0;
                lightTruth::Direction expectedMoment = {};
                for (const lightTruth::Light& light : truth) {
                    expected += light.power[color];
                    for (std::size_t axis = 0; axis < 3; ++axis)
                        expectedMoment[axis] += light.power[color] * light.direction[axis];
                }
                EXPECT_NEAR(power / expected, 1.0, 1e-5);
                for (std::size_t axis = 0; axis < 3; ++axis) // colours share the mean of all
                    EXPECT_NEAR(moment[axis] / expected, expectedMoment[axis] / expected, 0.003);
            }
        }
    }
}

TEST(LightTreeTest, nearTexelsAreTheirOwnAndFarOnesAreFew) {
    const ovImages::Image sky = lightTruth::hardSunPanorama(256);
    const lightTruth::Direction middle = lightTruth::panoramaDirection(512, 256, 100.5, 90.5);
    const auto lights = gathered(sky, false, middle, 0.02);
    EXPECT_LT(lights.size(), 512u * 256u / 20u);
    std::size_t found = 0;
    for (unsigned int y = 88; y < 94; ++y) {
        for (unsigned int x = 98; x < 104; ++x) {
            const auto place = lightTruth::panoramaDirection(512, 256, x + 0.5, y + 0.5);
            for (const PointLight& light : lights)
                found += light.variance < 1e-9f && std::abs(light.direction[0] - place[0]) < 1e-6 &&
                                 std::abs(light.direction[1] - place[1]) < 1e-6 &&
                                 std::abs(light.direction[2] - place[2]) < 1e-6
                             ? 1
                             : 0;
        }
    }
    EXPECT_EQ(found, 36u);
}

// A lobe ends at its horizon. What is half above it is not where its mean is, and half a sun may be more than
// all the rest.
TEST(LightTreeTest, brightTexelsStandForThemselvesOnAHorizon) {
    constexpr unsigned int WIDTH = 512;
    constexpr unsigned int HEIGHT = 256;
    ovImages::Image sky = lightTruth::floatPicture(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            lightTruth::setColor(sky, x, y, {0.1, 0.1, 0.1});
    for (const unsigned int y : {100u, 101u})
        for (const unsigned int x : {200u, 201u})
            lightTruth::setColor(sky, x, y, {50000.0, 50000.0, 50000.0});
    const lightTruth::Direction sun = lightTruth::panoramaDirection(WIDTH, HEIGHT, 201.0, 101.0);
    const lightTruth::Direction beside = lightTruth::normalized({-sun[2], 0.0, sun[0]});
    constexpr double WIDE = 1.0;
    const auto sunLights = [&](const lightTruth::Direction& middle) {
        std::vector<PointLight> lights;
        for (const PointLight& light : gathered(sky, false, middle, WIDE))
            if (light.power[0] > 1.0f)
                lights.push_back(light);
        return lights;
    };

    ASSERT_EQ(sunLights(sun).size(), 1u) << "elsewhere one light is enough";
    EXPECT_GT(sunLights(sun)[0].variance, 1e-9f);

    const std::vector<PointLight> lights = sunLights(beside);
    ASSERT_EQ(lights.size(), 4u);
    for (std::size_t i = 0; i < lights.size(); ++i) {
        const auto place =
            lightTruth::panoramaDirection(WIDTH, HEIGHT, 200.5 + (i % 2), 100.5 + static_cast<double>(i / 2));
        for (std::size_t axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(lights[i].direction[axis], place[axis], 1e-6) << i;
        EXPECT_EQ(lights[i].variance, 0.0f);
    }
}

TEST(LightTreeTest, darknessHasNoLights) {
    EXPECT_TRUE(gathered(lightTruth::floatPicture(64, 32), false, {1.0, 0.0, 0.0}, 0.1).empty());
}

} // namespace
