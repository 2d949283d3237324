#include <veldris/demo/DemoScene.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

TEST(DemoSceneTest, holdsAHighDynamicRangeAndRepeats) {
    constexpr unsigned int WIDTH = 192;
    constexpr unsigned int HEIGHT = 108;
    const ovImages::Image scene = veldris::drawDemoScene(WIDTH, HEIGHT);
    ASSERT_EQ(scene.getWidth(), WIDTH);
    ASSERT_EQ(scene.getHeight(), HEIGHT);
    float brightest = 0.0f;
    float darkest = 1e9f;
    for (unsigned int y = 0; y < HEIGHT; ++y) {
        for (unsigned int x = 0; x < WIDTH; ++x) {
            const float green = scene.getComponent(x, y, 1);
            ASSERT_TRUE(std::isfinite(green) && green >= 0.0f) << x << ", " << y;
            ASSERT_EQ(scene.getComponent(x, y, 3), 1.0f);
            brightest = std::max(brightest, green);
            darkest = std::min(darkest, green);
        }
    }
    EXPECT_GT(brightest, 1000.0f); // the sun
    EXPECT_LT(darkest, 0.01f);     // the chart's dark end
    EXPECT_GT(scene.getComponent(WIDTH / 2, 2, 2), scene.getComponent(WIDTH / 2, 2, 0)); // blue above
    EXPECT_TRUE(std::ranges::equal(scene.getBytes(), veldris::drawDemoScene(WIDTH, HEIGHT).getBytes()));
}

} // namespace
