#include <ovVeldris/environment/light/detail/EnvironmentSampler.h>

#include "support/LightTruth.h"

#include <gtest/gtest.h>

using ovVeldris::EnvironmentSampler;
using ovVeldris::EnvironmentTexels;

namespace {

TEST(EnvironmentSamplerTest, theMiddleOfATexelIsTheTexel) {
    const ovImages::Image map = lightTruth::hardSunPanorama(7);
    const EnvironmentTexels mapTexels(map.view(), false);
    const EnvironmentSampler sampler(mapTexels);
    for (unsigned int y = 0; y < 7; ++y)
        for (unsigned int x = 0; x < 14; ++x)
            for (unsigned int color = 0; color < 3; ++color)
                EXPECT_NEAR(sampler.sample(lightTruth::panoramaDirection(14, 7, x + 0.5, y + 0.5))[color],
                            map.getComponent(x, y, color), 1e-4);
    const ovImages::Image faces = lightTruth::hardSunFaces(5);
    const EnvironmentTexels faceTexels(faces.view(), true);
    const EnvironmentSampler faceSampler(faceTexels);
    for (unsigned int y = 0; y < 30; ++y)
        for (unsigned int x = 0; x < 5; ++x)
            for (unsigned int color = 0; color < 3; ++color)
                EXPECT_NEAR(
                    faceSampler.sample(lightTruth::faceDirection(y / 5, 5, x + 0.5, y % 5 + 0.5))[color],
                    faces.getComponent(x, y, color), 1e-4);
}

TEST(EnvironmentSamplerTest, interpolatesInPanoramasOverSeamsAndPoles) {
    ovImages::Image map = lightTruth::floatPicture(8, 4);
    const auto at = [&map](double x, double y) {
        const EnvironmentTexels texels(map.view(), false);
        return EnvironmentSampler(texels).sample(lightTruth::panoramaDirection(8, 4, x, y))[0];
    };
    map.setComponent(3, 2, 0, 16.0f);
    EXPECT_NEAR(at(3.75, 2.5), 12.0, 1e-4);
    EXPECT_NEAR(at(3.75, 2.25), 9.0, 1e-4);
    map.setComponent(0, 1, 0, 8.0f);
    EXPECT_NEAR(at(8.0, 1.5), 4.0, 1e-4) << "the ends meet";
    EXPECT_NEAR(at(7.75, 1.5), 2.0, 1e-4);
    map.setComponent(1, 0, 0, 4.0f);
    EXPECT_NEAR(at(1.5, 0.25), 3.0, 1e-4) << "beyond a pole lies the other side";
    EXPECT_NEAR(at(5.5, 0.25), 1.0, 1e-4);
    map.setComponent(6, 3, 0, 2.0f);
    EXPECT_NEAR(at(2.5, 3.75), 0.5, 1e-4);
}

TEST(EnvironmentSamplerTest, hasNoSeamBetweenFaces) {
    // Along a ring over four faces, and over the two others, a light that is smooth stays so.
    ovImages::Image faces = lightTruth::floatPicture(16, 96);
    const auto light = [](const lightTruth::Direction& d) { return 2.0 + d[0] + 0.5 * d[1] - d[2] * d[0]; };
    for (unsigned int y = 0; y < 96; ++y)
        for (unsigned int x = 0; x < 16; ++x)
            faces.setComponent(
                x, y, 0,
                static_cast<float>(light(lightTruth::faceDirection(y / 16, 16, x + 0.5, y % 16 + 0.5))));
    const EnvironmentTexels texels(faces.view(), true);
    const EnvironmentSampler sampler(texels);
    for (unsigned int i = 0; i < 720; ++i) {
        const double angle = i * lightTruth::PI / 360.0;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const lightTruth::Direction rings[] = {
            lightTruth::normalized({c, 0.3, s}), lightTruth::normalized({c, s, 0.2}),
            lightTruth::normalized({-0.4, c, s}), lightTruth::normalized({c, 0.7 * s, 0.7 * s})};
        for (const auto& d : rings)
            EXPECT_NEAR(sampler.sample(d)[0], light(d), 0.03) << i; // a texel is 6 degrees, a step 0.15
    }
}

} // namespace
