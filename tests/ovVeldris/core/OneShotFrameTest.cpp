#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/core/OneShotFrame.h>
#include <ovVeldris/environment/EnvironmentFixture.h>

using namespace ovVeldris;

namespace {
class OneShotFrameTest : public EnvironmentFixture {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, OneShotFrameTest, bothLanguages(), languageName);

TEST_P(OneShotFrameTest, drawsOnceIntoTheBackBuffer) {
    const auto target = makeTarget(3, 2);
    const auto compositor = ovGraphics::Compositor::create(&getGraphics());
    compositor->appendNode()->appendOperationsBlock()->appendClearPass()->setColor(0, 1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_TRUE(drawOneShotFrame(*compositor, *target));
    EXPECT_TRUE(
        picturesAreIdentical("one_shot", readFloats(*target), FloatPicture(3, 2, {1.0f, 2.0f, 3.0f, 4.0f})));
}

TEST_P(OneShotFrameTest, givesBackWhatWasActive) {
    const auto target = makeTarget(1, 1);
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    const auto context = ovGraphics::RenderContext::create(&getGraphics());
    const auto viewport = ovGraphics::Viewport::create(&getGraphics());
    getGraphics().getCameraManager()->setActiveRenderCamera(camera.get());
    getGraphics().getRenderContextManager()->setActiveRenderContext(context.get());
    getGraphics().getViewportManager()->setActiveViewport(viewport.get());
    const auto compositor = ovGraphics::Compositor::create(&getGraphics());
    compositor->appendNode()->appendOperationsBlock()->appendClearPass();
    EXPECT_TRUE(drawOneShotFrame(*compositor, *target));
    EXPECT_EQ(getGraphics().getCameraManager()->getActiveRenderCamera(), camera.get());
    EXPECT_EQ(getGraphics().getRenderContextManager()->getActiveRenderContext(), context.get());
    EXPECT_EQ(getGraphics().getViewportManager()->getActiveViewport(), viewport.get());
}

TEST_P(OneShotFrameTest, tellsWhenNothingCanBeDrawn) {
    ovGraphics::System closed;
    const auto compositor = ovGraphics::Compositor::create(&closed);
    const auto target = ovGraphics::Texture::create(&closed);
    EXPECT_FALSE(drawOneShotFrame(*compositor, *target));
}
