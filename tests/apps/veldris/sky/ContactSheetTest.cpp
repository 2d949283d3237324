#include <veldris/sky/ContactSheet.h>

#include <gtest/gtest.h>

namespace {

using namespace veldris;
using ovImages::Image;

Image makePicture(unsigned int width, unsigned int height, float value) {
    Image picture(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                picture.setComponent(x, y, channel,
                                     channel == 3 ? 1.0f : value + float(channel) + 8.0f * float(x % 2));
    return picture;
}

TEST(ContactSheetTest, smallPicturesAreCopiedRowByRow) {
    ContactSheet sheet(5, 6, 3);
    for (unsigned int i = 0; i < 5; ++i)
        sheet.add(makePicture(6, 3, 100.0f * float(i + 1)).view());
    const Image& image = sheet.getImage();
    ASSERT_EQ(image.getWidth(), 3u * 10 + 4);
    ASSERT_EQ(image.getHeight(), 2u * 7 + 4);
    for (unsigned int y = 0; y < image.getHeight(); ++y)
        for (unsigned int x = 0; x < image.getWidth(); ++x) {
            EXPECT_EQ(image.getComponent(x, y, 3), 1.0f);
            const bool isInside = x % 10 >= 4 && y % 7 >= 4;
            const unsigned int cell = y / 7 * 3 + x / 10;
            const bool isFilled = isInside && cell < 5 && x < 34 && y < 18;
            const float expected =
                isFilled ? 100.0f * float(cell + 1) + 2.0f + 8.0f * float(x % 10 % 2) : 0.0f;
            EXPECT_EQ(image.getComponent(x, y, 2), expected) << x << " " << y;
        }
}

TEST(ContactSheetTest, largePicturesAreAveraged) {
    ContactSheet sheet(1, 641, 400); // a third: 213 x 133
    sheet.add(makePicture(641, 400, 5.0f).view());
    const Image& image = sheet.getImage();
    ASSERT_EQ(image.getWidth(), 213u + 8);
    ASSERT_EQ(image.getHeight(), 133u + 8);
    EXPECT_NEAR(image.getComponent(4, 4, 0), 5.0f + 8.0f / 3.0f, 1e-5);  // columns 0, 1, 2
    EXPECT_NEAR(image.getComponent(5, 4, 0), 5.0f + 16.0f / 3.0f, 1e-5); // columns 3, 4, 5
}

TEST(ContactSheetTest, flatPicturesKeepARow) {
    ContactSheet sheet(2, 5000, 2);
    sheet.add(makePicture(5000, 2, 1.0f).view());
    EXPECT_EQ(sheet.getImage().getHeight(), 1u + 8);
    EXPECT_NEAR(sheet.getImage().getComponent(4, 4, 0), 5.0f, 1e-5);
}

} // namespace
