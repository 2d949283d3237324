#include <ovVeldris/environment/light/EnvironmentTexels.h>

#include "support/LightTruth.h"

#include <gtest/gtest.h>

using ovVeldris::EnvironmentTexels;

namespace {

struct Shape {
    bool isCube;
    unsigned int width;
    unsigned int height;
};

constexpr Shape SHAPES[] = {{false, 1, 1}, {false, 2, 1}, {false, 16, 8}, {false, 13, 7}, {false, 5, 40},
                            {true, 1, 6},  {true, 2, 12}, {true, 5, 30},  {true, 8, 48}};

TEST(EnvironmentTexelsTest, placesEveryTexel) {
    for (const Shape& row : SHAPES) {
        SCOPED_TRACE(std::to_string(row.width) + " x " + std::to_string(row.height));
        const ovImages::Image image = lightTruth::floatPicture(row.width, row.height);
        const EnvironmentTexels texels(image.view(), row.isCube);
        ASSERT_TRUE(texels.isValid());
        const auto expected = lightTruth::lightsOf(image, row.isCube);
        double whole = 0.0;
        for (unsigned int y = 0; y < row.height; ++y) {
            for (unsigned int x = 0; x < row.width; ++x) {
                const lightTruth::Light& light = expected[std::size_t{y} * row.width + x];
                for (std::size_t axis = 0; axis < 3; ++axis)
                    EXPECT_NEAR(texels.getDirection(x, y)[axis], light.direction[axis], 1e-15);
                // Solid angles are held as 32-bit floats.
                EXPECT_NEAR(texels.getSolidAngle(x, y) / light.solidAngle, 1.0, 1e-7) << x << ", " << y;
                whole += texels.getSolidAngle(x, y);
            }
        }
        EXPECT_NEAR(whole, 4.0 * lightTruth::PI, 1e-6);
    }
}

TEST(EnvironmentTexelsTest, readsThreeAndFourChannelsWhereTheyLie) {
    for (const unsigned int channels : {3u, 4u}) {
        ovImages::Image image(3, 18, channels, ovImages::COMPONENT_TYPE::FLOAT,
                              ovImages::COLOR_ENCODING::LINEAR);
        image.setComponent(2, 17, 0, 0.5f);
        image.setComponent(2, 17, 1, 110000.0f);
        image.setComponent(2, 17, 2, 3.0f);
        for (const bool isCube : {false, true}) {
            const EnvironmentTexels texels(image.view(), isCube);
            ASSERT_TRUE(texels.isValid());
            EXPECT_EQ(texels.getLight(2, 17)[0], 0.5f);
            EXPECT_EQ(texels.getLight(2, 17)[1], 110000.0f);
            EXPECT_EQ(texels.getLight(2, 17)[2], 3.0f);
            EXPECT_EQ(texels.getWidth(), 3u);
            EXPECT_EQ(texels.getHeight(), 18u);
        }
    }
}

TEST(EnvironmentTexelsTest, tellsTheShapeOfTexels) {
    const ovImages::Image map = lightTruth::floatPicture(16, 16);
    const EnvironmentTexels texels(map.view(), false);
    // Texels of a square map are twice as wide as high at the equator, and narrower by the cosine elsewhere.
    EXPECT_NEAR(texels.getStretch(8), 2.0 * std::cos(0.5 * lightTruth::PI / 16.0), 1e-12);
    EXPECT_NEAR(texels.getStretch(0), 2.0 * std::sin(0.5 * lightTruth::PI / 16.0), 1e-12);
    const ovImages::Image cube = lightTruth::floatPicture(2, 12);
    EXPECT_EQ(EnvironmentTexels(cube.view(), true).getStretch(7), 1.0);

    EXPECT_NEAR(texels.getTexelHeight(), lightTruth::PI / 16.0, 1e-12);
    // The texel in the middle of a face, between the directions of its upper and lower edge.
    const ovImages::Image fine = lightTruth::floatPicture(101, 606);
    const double seen = 2.0 * std::atan(1.0 / 101.0);
    EXPECT_NEAR(EnvironmentTexels(fine.view(), true).getTexelHeight() / seen, 1.0, 1e-4);
}

TEST(EnvironmentTexelsTest, refusesWhatItCannotRead) {
    using ovImages::COLOR_ENCODING;
    using ovImages::COMPONENT_TYPE;
    const ovImages::Image cases[] = {
        {},
        {4, 2, 3, COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR},
        {4, 2, 3, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::SRGB},
        {4, 2, 2, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR},
    };
    for (const ovImages::Image& image : cases)
        EXPECT_FALSE(EnvironmentTexels(image.view(), false).isValid());
    const ovImages::Image map = lightTruth::floatPicture(4, 2);
    EXPECT_TRUE(EnvironmentTexels(map.view(), false).isValid());
    EXPECT_FALSE(EnvironmentTexels(map.view(), true).isValid());
}

} // namespace
