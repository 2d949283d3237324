#include <veldris/demo/PictureSheet.h>

#include <gtest/gtest.h>

namespace {

using ovImages::Image;

Image numbered(unsigned int width, unsigned int height) {
    Image picture(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                picture.setComponent(x, y, channel, 0.01f * static_cast<float>(100 * channel + 10 * y + x));
    return picture;
}

TEST(PictureSheetTest, drawsColoursIntoTheCellAndNothingElse) {
    veldris::PictureSheet sheet(9, 5, 4, 2, ovImages::COLOR_ENCODING::SRGB);
    EXPECT_EQ(sheet.getCellWidth(), 2u);
    EXPECT_EQ(sheet.getCellHeight(), 2u);
    const Image picture = numbered(2, 2);
    sheet.draw(picture, 6);
    const Image image = sheet.take();
    EXPECT_EQ(image.getEncoding(), ovImages::COLOR_ENCODING::SRGB);
    for (unsigned int y = 0; y < 5; ++y)
        for (unsigned int x = 0; x < 9; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel) {
                const bool isDrawn = channel < 3 && (x == 4 || x == 5) && (y == 2 || y == 3);
                EXPECT_EQ(image.getComponent(x, y, channel),
                          isDrawn ? picture.getComponent(x - 4, y - 2, channel) : 1.0f)
                    << x << " " << y << " " << channel;
            }
}

TEST(PictureSheetTest, enlargesTexelsAndLeavesOutWhatDoesNotFit) {
    veldris::PictureSheet sheet(7, 4, 2, 1, ovImages::COLOR_ENCODING::LINEAR);
    const Image picture = numbered(3, 3);
    sheet.draw(picture, 1, 2);
    const Image image = sheet.take();
    for (unsigned int y = 0; y < 4; ++y)
        for (unsigned int x = 0; x < 7; ++x)
            EXPECT_EQ(image.getComponent(x, y, 1), x < 3 ? 1.0f : picture.getComponent((x - 3) / 2, y / 2, 1))
                << x << " " << y;
}

TEST(PictureSheetTest, hasCellsOfAPixelWhereItIsTooSmall) {
    veldris::PictureSheet sheet(2, 1, 6, 3, ovImages::COLOR_ENCODING::LINEAR);
    EXPECT_EQ(sheet.getCellWidth(), 1u);
    EXPECT_EQ(sheet.getCellHeight(), 1u);
    const Image picture = numbered(1, 1);
    sheet.draw(picture, 17); // beyond what there is
    sheet.draw(picture, 1);
    const Image image = sheet.take();
    EXPECT_EQ(image.getComponent(0, 0, 0), 1.0f);
    EXPECT_EQ(image.getComponent(1, 0, 0), 0.0f);
}

} // namespace
