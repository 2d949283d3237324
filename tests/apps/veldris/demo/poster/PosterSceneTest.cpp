#include <veldris/demo/poster/PosterScene.h>

#include <cmath>
#include <gtest/gtest.h>
#include <veldris/SessionTesting.h>

namespace {

using ovMemory::String;

class PosterSceneTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    veldris::Session _session;
};

TEST_F(PosterSceneTest, showsStonesBeforeALightSkyAndStopsWhereItCannotBeTaken) {
    constexpr unsigned int WIDTH = 96;
    constexpr unsigned int HEIGHT = 54;
    String error;
    const auto take = [&](veldris::MaterialPicture& picture, String& reason) {
        EXPECT_EQ(picture.name, "poster");
        const auto image = picture.texture->convertToImage();
        const auto luminanceAt = [&](unsigned int x, unsigned int y) {
            return 0.2126f * image->getComponent(x, y, 0) + 0.7152f * image->getComponent(x, y, 1) +
                   0.0722f * image->getComponent(x, y, 2);
        };
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                EXPECT_TRUE(std::isfinite(luminanceAt(x, y)) && luminanceAt(x, y) > 0.0f) << x << ", " << y;
        const float stone = luminanceAt(24, 26);
        EXPECT_GT(luminanceAt(48, 4), 4.0f * stone) << "the sky above";
        EXPECT_GT(luminanceAt(33, 19), 2.0f * luminanceAt(90, 4)) << "the glow of the sun";
        EXPECT_GT(image->getComponent(90, 4, 2), image->getComponent(90, 4, 0)) << "blue away from the sun";
        EXPECT_GT(image->getComponent(33, 26, 0), image->getComponent(33, 26, 2)) << "warm beside it";
        reason = "the disk is full"; // drawing it once must do for both
        return false;
    };
    EXPECT_FALSE(veldris::drawPoster(_session, WIDTH, HEIGHT, "poster", take, error));
    EXPECT_EQ(error, "the disk is full");
}

TEST_F(PosterSceneTest, drawsNothingWhereAnotherPictureIsWanted) {
    String error;
    const auto take = [](veldris::MaterialPicture&, String&) {
        ADD_FAILURE() << "drawn";
        return true;
    };
    EXPECT_TRUE(veldris::drawPoster(_session, 16, 16, "helmet", take, error));
    EXPECT_EQ(veldris::posterNames().size(), 1u);
}

} // namespace
