#include <cstdlib>
#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/VirtualDisplay.h>
#include <ovGraphics/resources/Camera.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {
class RenderContextTest : public PictureTest {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, RenderContextTest, bothLanguages(), languageName);

TEST_P(RenderContextTest, blocksWithoutTargetDrawIntoTheBackBufferOfTheContext) {
    TestShader shader(getGraphics(), UV_TEXT);
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    auto first = makeTarget(2, 2);
    const auto second = makeTarget(4, 4);
    Canvas canvas(getGraphics(), first.get());
    canvas.addDraw(*shader);
    const auto other = RenderContext::create(&getGraphics());
    other->setName("other");
    other->setDescriptor({.texture = second.get()});
    other->setCompositor(canvas.compositor.get()); // two contexts may share one
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(canvas.frame()) << getGraphicsLogger().getText();
        EXPECT_EQ(getGraphics().getRenderContextManager()->getActiveRenderContext(), canvas.context.get());
        ASSERT_TRUE(getGraphics().frame(other.get()));
        EXPECT_EQ(getGraphics().getRenderContextManager()->getActiveRenderContext(), other.get());
    }
    EXPECT_NEAR(readFloats(*first).at(1, 1)[0], 0.75f, 1e-5f);
    EXPECT_NEAR(readFloats(*second).at(3, 3)[0], 0.875f, 1e-5f);
    EXPECT_EQ(getGraphicsLogger().getText(), "");

    // A back buffer that is gone is not drawn to through what was made for it.
    first.reset();
    EXPECT_EQ(canvas.context->getBackBuffer(), nullptr);
    ASSERT_TRUE(canvas.frame());
    EXPECT_TRUE(getGraphicsLogger().contains("the context no back buffer")) << getGraphicsLogger().getText();
    canvas.context->setDescriptor({.texture = second.get()});
    ASSERT_TRUE(canvas.frame());
    EXPECT_EQ(getGraphicsLogger().messages.size(), 1u);
}

TEST_P(RenderContextTest, aHeadlessSystemHasNoWindowToDrawIn) {
    Canvas canvas(getGraphics());
    canvas.context->setDescriptor({.window = true});
    EXPECT_TRUE(canvas.context->drawsInWindow());
    EXPECT_FALSE(canvas.frame());
    EXPECT_EQ(
        getGraphicsLogger().getText(),
        "[RenderContext] Could not draw in the window with the render context 'canvas': the graphics system "
        "has no window; name one in Configuration::window.\n");
    System closed;
    EXPECT_FALSE(RenderContext::create(&closed)->followWindowSize());
    EXPECT_FALSE(getGraphics().windowShouldClose());
    getGraphics().pollWindowEvents();
}

TEST_P(RenderContextTest, aWindowShowsLightAsFilesDo) {
    const VirtualDisplay display;
    if (!openWindowsOn(display))
        return;
    System windowed;
    Configuration configuration;
    configuration.language = GetParam();
    configuration.window = WindowConfiguration{.width = 32, .height = 16, .title = "test"};
    ASSERT_TRUE(windowed.initialize(configuration));
    {
        Canvas canvas(windowed);
        canvas.context->setDescriptor({.window = true});
        canvas.addBlock()->appendClearPass()->setColor(0, 0.32f, 0.25f, 1.0f, 1.0f);
        // IEC 61966-2-1 to 8 bits, as a PNG file of the same light has it.
        const std::vector<unsigned char> expected = {153, 137, 255};
        std::vector<unsigned char> shown;
        for (int i = 0; i < 500 && shown != expected; ++i) {
            ASSERT_TRUE(canvas.frame());
            windowed.pollWindowEvents();
            shown = display.readPixel(8, 8);
        }
        EXPECT_EQ(shown, expected);
    }
    unsetenv("DISPLAY");
}

TEST_P(RenderContextTest, resetForgetsWhatItDraws) {
    const auto target = makeTarget(2, 2);
    const auto camera = Camera::create(&getGraphics());
    Canvas canvas(getGraphics(), target.get());
    canvas.context->setCamera(camera.get());
    canvas.context->reset();
    EXPECT_EQ(canvas.context->getBackBuffer(), nullptr);
    EXPECT_EQ(canvas.context->getCamera(), nullptr);
    EXPECT_EQ(canvas.context->getCompositor(), nullptr);
    EXPECT_FALSE(canvas.context->drawsInWindow());
}
