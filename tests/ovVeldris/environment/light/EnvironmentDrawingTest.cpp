#include <ovVeldris/environment/light/EnvironmentDrawing.h>

#include "support/LightTruth.h"

#include <gtest/gtest.h>

using ovVeldris::EnvironmentTexels;

namespace {

lightTruth::Color colorOf(const lightTruth::Direction& d) {
    return {0.5 + 0.5 * d[0], 0.5 + 0.5 * d[1], 0.5 + 0.5 * d[2]};
}

ovImages::Image directionPanorama(unsigned int height) {
    ovImages::Image image = lightTruth::floatPicture(2 * height, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < 2 * height; ++x)
            lightTruth::setColor(
                image, x, y, colorOf(lightTruth::panoramaDirection(2 * height, height, x + 0.5, y + 0.5)));
    return image;
}

ovImages::Image directionFaces(unsigned int side) {
    ovImages::Image image = lightTruth::floatPicture(side, 6 * side);
    for (unsigned int y = 0; y < 6 * side; ++y)
        for (unsigned int x = 0; x < side; ++x)
            lightTruth::setColor(image, x, y,
                                 colorOf(lightTruth::faceDirection(y / side, side, x + 0.5, y % side + 0.5)));
    return image;
}

/// The largest difference of a colour from its direction's, or of alpha from 1.
double worstOf(const ovImages::Image& image, bool isCube) {
    double worst = 0.0;
    const unsigned int width = image.getWidth();
    for (unsigned int y = 0; y < image.getHeight(); ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            const auto expected =
                colorOf(isCube ? lightTruth::faceDirection(y / width, width, x + 0.5, y % width + 0.5)
                               : lightTruth::panoramaDirection(width, image.getHeight(), x + 0.5, y + 0.5));
            for (unsigned int channel = 0; channel < 3; ++channel)
                worst = std::max(worst, std::abs(image.getComponent(x, y, channel) - expected[channel]));
            worst = std::max(worst, std::abs(image.getComponent(x, y, 3) - 1.0));
        }
    }
    return worst;
}

TEST(EnvironmentDrawingTest, everyShapeShowsTheSameDirections) {
    const ovImages::Image panorama = directionPanorama(64);
    const ovImages::Image faces = directionFaces(32);
    for (const bool isCube : {false, true}) {
        const EnvironmentTexels texels((isCube ? faces : panorama).view(), isCube);
        for (const unsigned int size : {16u, 31u, 32u, 100u}) {
            SCOPED_TRACE(size);
            // Straight lines between the directions of texels, and means over them: 16 texels a face are 5.6
            // degrees each, over which a direction gets shorter by a thousandth. Where the environment is a
            // cube, a texel beyond an edge is the nearest one of the neighbour: up to a quarter of 3 degrees
            // beside.
            const double limit = isCube ? 0.008 : 0.0025;
            EXPECT_LT(worstOf(ovVeldris::drawEnvironmentCube(texels, size), true), limit);
            const ovImages::Image drawn = ovVeldris::drawEnvironmentPanorama(texels, size);
            EXPECT_EQ(drawn.getWidth(), 2 * size);
            EXPECT_LT(worstOf(drawn, false), size == 16 ? 2.0 * limit : limit);
        }
    }
}

/// Columns of 0 and 2 in turns.
ovImages::Image stripes(unsigned int width, unsigned int height) {
    ovImages::Image image = lightTruth::floatPicture(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 1; x < width; x += 2)
            image.setComponent(x, y, 0, 2.0f);
    return image;
}

TEST(EnvironmentDrawingTest, fineEnvironmentsAreAveraged) {
    const ovImages::Image panorama = stripes(512, 256);
    const ovImages::Image faces = stripes(128, 768);
    for (const bool isCube : {false, true}) {
        const EnvironmentTexels texels((isCube ? faces : panorama).view(), isCube);
        const ovImages::Image pictures[] = {ovVeldris::drawEnvironmentCube(texels, 9),
                                            ovVeldris::drawEnvironmentPanorama(texels, 17)};
        for (const ovImages::Image& picture : pictures)
            for (unsigned int y = 0; y < picture.getHeight(); ++y)
                for (unsigned int x = 0; x < picture.getWidth(); ++x)
                    EXPECT_NEAR(picture.getComponent(x, y, 0), 1.0f, 0.2f)
                        << isCube << ": " << x << ", " << y;
    }
}

TEST(EnvironmentDrawingTest, lightIsNeitherLostNorMade) {
    const ovImages::Image skies[] = {lightTruth::oneBrightTexel(512, 256, 200, 100),
                                     lightTruth::oneBrightTexel(512, 256, 0, 128)};
    for (const ovImages::Image& sky : skies) {
        const auto truth = lightTruth::coefficientsOf(lightTruth::lightsOf(sky, false));
        for (const unsigned int side : {16u, 64u}) {
            const ovImages::Image cube =
                ovVeldris::drawEnvironmentCube(EnvironmentTexels(sky.view(), false), side);
            const auto drawn = lightTruth::coefficientsOf(lightTruth::lightsOf(cube, true));
            // The texel's light moves by part of a texel of the cube, whose solid angle differs.
            EXPECT_NEAR(drawn[0][0] / truth[0][0], 1.0, 0.05) << side;
        }
    }
}

TEST(EnvironmentDrawingTest, halvedFacesAreMeans) {
    for (const unsigned int side : {1u, 2u, 5u, 8u}) {
        ovImages::Image faces = lightTruth::floatPicture(side, 6 * side);
        for (unsigned int y = 0; y < 6 * side; ++y)
            for (unsigned int x = 0; x < side; ++x)
                lightTruth::setColor(faces, x, y, {x + 0.5, y % side + 0.5, static_cast<double>(y / side)});
        const ovImages::Image halved = ovVeldris::halveCube(faces);
        const unsigned int half = std::max(side / 2, 1u);
        ASSERT_EQ(halved.getWidth(), half);
        ASSERT_EQ(halved.getHeight(), 6 * half);
        const double step = static_cast<double>(side) / half;
        for (unsigned int y = 0; y < 6 * half; ++y) {
            for (unsigned int x = 0; x < half; ++x) {
                // The mean of places over a part of the face is its middle, up to the flat texels at its
                // ends: the 2.5 texels 0, 1 and half of 2 have the mean (0.5 + 1.5 + 2.5 / 2) / 2.5.
                const double flat = side == 5 ? 0.06 : 1e-6;
                EXPECT_NEAR(halved.getComponent(x, y, 0), (x + 0.5) * step, flat);
                EXPECT_NEAR(halved.getComponent(x, y, 1), (y % half + 0.5) * step, flat);
                EXPECT_NEAR(halved.getComponent(x, y, 2), y / half, 1e-6);
                EXPECT_NEAR(halved.getComponent(x, y, 3), 1.0, 1e-6);
            }
        }
    }
}

} // namespace
