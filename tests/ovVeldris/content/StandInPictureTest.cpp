#include <ovVeldris/content/StandInPicture.h>

#include <gtest/gtest.h>

TEST(StandInPictureTest, isAnOpaqueChequerboardOfMagentaAndBlack) {
    const ovImages::Image image = ovVeldris::makeStandInPicture(ovImages::COLOR_ENCODING::LINEAR);
    ASSERT_EQ(image.getWidth(), 8u);
    ASSERT_EQ(image.getHeight(), 8u);
    EXPECT_EQ(image.getEncoding(), ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 8; ++y) {
        for (unsigned int x = 0; x < 8; ++x) {
            const float magenta = (x + y) % 2 == 0 ? 1.0f : 0.0f;
            const float expected[] = {magenta, 0.0f, magenta, 1.0f};
            for (unsigned int channel = 0; channel < 4; ++channel)
                EXPECT_EQ(image.getComponent(x, y, channel), expected[channel])
                    << x << ' ' << y << ' ' << channel;
        }
    }
}
