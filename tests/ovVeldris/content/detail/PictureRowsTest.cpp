#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <ovVeldris/content/detail/PictureRows.h>

using namespace ovVeldris::detail;
using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;

namespace {

/// Floats that no two texels share.
Image makeFloats(unsigned int width, unsigned int height) {
    Image image(width, height, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                image.setComponent(x, y, channel,
                                   std::sin(static_cast<float>(1 + x + 7 * y + 31 * channel)) + 2.0f);
    return image;
}

/// The bilinear filter of OpenGL 4.5, section 8.14.2, clamped to the edge, in double precision.
double sample(const Image& image, double u, double v, unsigned int channel) {
    const auto at = [&](double x, double y) {
        const double column = std::clamp(x, 0.0, image.getWidth() - 1.0);
        const double row = std::clamp(y, 0.0, image.getHeight() - 1.0);
        return double{
            image.getComponent(static_cast<unsigned int>(column), static_cast<unsigned int>(row), channel)};
    };
    const double x = u * image.getWidth() - 0.5;
    const double y = v * image.getHeight() - 0.5;
    const double a = x - std::floor(x);
    const double b = y - std::floor(y);
    const double left = std::floor(x);
    const double top = std::floor(y);
    return (1 - b) * ((1 - a) * at(left, top) + a * at(left + 1, top)) +
           b * ((1 - a) * at(left, top + 1) + a * at(left + 1, top + 1));
}

} // namespace

TEST(PictureRowsTest, picturesAreReadAtAnySize) {
    struct Size {
        unsigned int width, height;
    };
    constexpr double FLOAT_SUMS = 2e-6;
    for (const Size from : {Size{1, 1}, Size{1, 5}, Size{5, 1}, Size{3, 4}, Size{7, 6}}) {
        const Image image = makeFloats(from.width, from.height);
        for (const Size to : {Size{1, 1}, Size{3, 4}, Size{7, 6}, Size{6, 9}, Size{11, 2}}) {
            PictureRows rows(image.view(), to.width, to.height);
            for (unsigned int y = 0; y < to.height; ++y) {
                const auto row = rows.read(y);
                ASSERT_EQ(row.size(), to.width * 4u);
                for (unsigned int i = 0; i < row.size(); ++i)
                    EXPECT_NEAR(row[i], sample(image, (i / 4 + 0.5) / to.width, (y + 0.5) / to.height, i % 4),
                                FLOAT_SUMS)
                        << from.width << " x " << from.height << " to " << to.width << " x " << to.height
                        << ", row " << y << ", number " << i;
            }
        }
    }
}

TEST(PictureRowsTest, rowsAreReadInAnyOrder) {
    const Image image = makeFloats(3, 5);
    PictureRows inOrder(image.view(), 4, 9);
    ovMemory::Buffer<ovMemory::Buffer<float>> expected;
    for (unsigned int y = 0; y < 9; ++y) {
        const auto row = inOrder.read(y);
        expected.emplace_back(row.begin(), row.end());
    }
    PictureRows jumping(image.view(), 4, 9);
    for (const unsigned int y : {8u, 0u, 4u, 3u, 3u, 5u, 1u, 7u, 2u, 6u}) {
        const auto row = jumping.read(y);
        EXPECT_TRUE(std::ranges::equal(row, expected[y])) << y;
    }
}

TEST(PictureRowsTest, encodedNumbersBecomeLight) {
    Image image(2, 1, 1, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    image.getBytes()[1] = 188;
    PictureRows rows(image.view(), 2, 1);
    const auto row = rows.read(0);
    const float light = std::pow((188.0f / 255.0f + 0.055f) / 1.055f, 2.4f);
    const float expected[] = {0.0f, 0.0f, 0.0f, 1.0f, light, light, light, 1.0f};
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_NEAR(row[i], expected[i], 1e-6f) << i;
}

TEST(PictureRowsTest, aPictureIsMadeOfRows) {
    const Image image =
        makePicture(3, 2, COLOR_ENCODING::LINEAR, [](unsigned int y, ovMemory::BufferView<float> row) {
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = static_cast<float>(i) * 0.1f + static_cast<float>(y) - 0.3f;
        });
    EXPECT_EQ(image.getWidth(), 3u);
    EXPECT_EQ(image.getHeight(), 2u);
    EXPECT_EQ(image.getChannels(), 4u);
    for (unsigned int i = 0; i < 24; ++i) {
        const double value = (i % 12) * 0.1 + i / 12 - 0.3;
        EXPECT_NEAR(image.getBytes()[i], 255.0 * std::clamp(value, 0.0, 1.0), 0.5 + 1e-4) << i;
    }
    EXPECT_TRUE(makePicture(0, 2, COLOR_ENCODING::LINEAR, [](unsigned int, ovMemory::BufferView<float>) {
                }).isEmpty());
}
