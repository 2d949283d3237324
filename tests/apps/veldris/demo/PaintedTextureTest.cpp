#include <veldris/demo/PaintedTexture.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <veldris/SessionTesting.h>

TEST(PaintedTextureTest, holdsTheColourOfEachPlace) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    const auto texture = veldris::paintTexture(
        session.getGraphics(), 4, false, [](float u, float v) { return ovMaths::Vector(u, v, 0.2f, 0.4f); });
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->getMipCount(), 3u);
    const auto image = texture->convertToImage();
    for (unsigned int y = 0; y < 4; ++y)
        for (unsigned int x = 0; x < 4; ++x) {
            EXPECT_NEAR(image->getComponent(x, y, 0), (float(x) + 0.5f) / 4.0f, 0.5f / 255.0f);
            EXPECT_NEAR(image->getComponent(x, y, 1), (float(y) + 0.5f) / 4.0f, 0.5f / 255.0f);
            EXPECT_NEAR(image->getComponent(x, y, 2), 0.2f, 0.5f / 255.0f);
            EXPECT_NEAR(image->getComponent(x, y, 3), 0.4f, 0.5f / 255.0f);
        }
    const auto smallest = texture->convertToImage(0, 2);
    EXPECT_NEAR(smallest->getComponent(0, 0, 0), 0.5f, 2.0f / 255.0f) << "mips are there";
}
