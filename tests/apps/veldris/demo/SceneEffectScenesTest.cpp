#include <veldris/demo/SceneEffectScenes.h>

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <veldris/SessionTesting.h>
#include <veldris/demo/PictureMeans.h>

namespace {

using ovMemory::String;

class SceneEffectScenesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    static constexpr unsigned int WIDTH = 96;
    static constexpr unsigned int HEIGHT = 54;

    veldris::Session _session;
};

TEST_F(SceneEffectScenesTest, everyPictureShowsItsEffect) {
    std::map<String, ovImages::Image> pictures;
    const auto take = [&](veldris::MaterialPicture& picture, String&) {
        EXPECT_FALSE(picture.caption.empty());
        pictures[String(picture.name)] = std::move(*picture.texture->convertToImage());
        return true;
    };
    String error;
    ASSERT_TRUE(veldris::drawSceneEffectPictures(_session, WIDTH, HEIGHT, "", take, error)) << error;
    ASSERT_EQ(pictures.size(), veldris::sceneEffectPictureNames().size());
    for (const auto& [name, image] : pictures)
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                for (unsigned int channel = 0; channel < 3; ++channel)
                    ASSERT_TRUE(std::isfinite(image.getComponent(x, y, channel))) << name;

    for (const char* name : {"occlusion-depth", "occlusion-positions", "occlusion-normals"}) {
        const ovImages::Image& image = pictures[name];
        EXPECT_EQ(image.getComponent(4, 50, 0), 1.0f) << "open ground, alone: " << name;
        unsigned int dark = 0;
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH / 2; ++x) {
                dark += image.getComponent(x, y, 1) < 0.85f ? 1 : 0;
                EXPECT_EQ(image.getComponent(x, y, 0), image.getComponent(x, y, 2)) << "grey";
            }
        EXPECT_GT(dark, 20u) << name;
        EXPECT_LT(dark, WIDTH * HEIGHT / 8) << name;
    }
    EXPECT_NE(pictures["occlusion-positions"].getComponent(34, 15, 0) +
                  meanIn(pictures["occlusion-positions"], 0, 0, 48, HEIGHT, 0),
              pictures["occlusion-normals"].getComponent(34, 15, 0) +
                  meanIn(pictures["occlusion-normals"], 0, 0, 48, HEIGHT, 0))
        << "normals make a difference";

    // The sky is blue, and so is what lies far away: farther than the grass at the camera's feet.
    const ovImages::Image& valley = pictures["aerial-perspective"];
    EXPECT_GT(meanIn(valley, 40, 2, 16, 4, 2), 1.3 * meanIn(valley, 40, 2, 16, 4, 0));
    const auto blueness = [&](unsigned int left, unsigned int top) {
        return meanIn(valley, left, top, 6, 4, 2) / meanIn(valley, left, top, 6, 4, 0);
    };
    EXPECT_GT(blueness(29, 27), 1.2 * blueness(40, 48)) << "a far slope, and the near ground";

    // Stripes of light lie between stripes of shadow.
    const ovImages::Image& hall = pictures["shadowed-air"];
    unsigned int edges = 0;
    for (unsigned int x = 1; x < WIDTH; ++x)
        edges += std::abs(hall.getComponent(x, 40, 0) - hall.getComponent(x - 1, 40, 0)) >
                         0.05f * hall.getComponent(x, 40, 0)
                     ? 1
                     : 0;
    EXPECT_GE(edges, 8u);
}

TEST_F(SceneEffectScenesTest, onePictureAloneIsDrawn) {
    int taken = 0;
    String error;
    const auto refuse = [&](veldris::MaterialPicture& picture, String& reason) {
        ++taken;
        EXPECT_EQ(picture.name, "occlusion-positions");
        reason = "the disk is full";
        return false;
    };
    EXPECT_FALSE(veldris::drawSceneEffectPictures(_session, 32, 32, "occlusion-positions", refuse, error));
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(error, "the disk is full");
}

} // namespace
