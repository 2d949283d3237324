#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Viewport.h>

using namespace ovGraphics;

TEST(ViewportTest, keepsItsRectangleUntilReset) {
    System system;
    const auto viewport = Viewport::create(&system);
    const auto expect = [&](int x, int y, unsigned int width, unsigned int height) {
        EXPECT_EQ(viewport->getX(), x);
        EXPECT_EQ(viewport->getY(), y);
        EXPECT_EQ(viewport->getWidth(), width);
        EXPECT_EQ(viewport->getHeight(), height);
    };
    expect(0, 0, 1, 1);
    viewport->setOrigin(-3, 4);
    viewport->setSize(50, 60);
    expect(-3, 4, 50, 60);
    viewport->setName("kept");
    viewport->setHidden(true);
    viewport->reset();
    expect(0, 0, 1, 1);
    EXPECT_EQ(viewport->getName(), "kept");
    EXPECT_TRUE(viewport->getHidden());
    EXPECT_EQ(viewport->getSystem(), &system);
}
