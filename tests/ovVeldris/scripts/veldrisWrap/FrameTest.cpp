#include <ovVeldris/scripts/veldrisWrap/Frame.h>

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <scripts/veldrisWrap/VeldrisScripts.h>

namespace {

class FrameTest : public VeldrisScripts {
protected:
    ovMemory::UniquePtr<ovGraphics::Texture> makeTarget() {
        auto texture = ovGraphics::Texture::create(nullptr);
        texture->setUsableAsRenderTarget(true);
        EXPECT_TRUE(texture->load());
        return texture;
    }
};

} // namespace

TEST_F(FrameTest, withoutATargetNothingIsAdded) {
    ovVeldrisWrap::Frame frame;
    const auto queue = ovGraphics::RenderQueue::create(nullptr);
    const auto camera = ovGraphics::Camera::create(nullptr);
    const auto shader = ovGraphics::Shader::create(nullptr);
    EXPECT_FALSE(frame.clear({1, 1, 1, 1}));
    EXPECT_FALSE(frame.drawQueue(*queue, *camera, false));
    EXPECT_FALSE(frame.drawShader(*shader, nullptr));
    EXPECT_FALSE(frame.draw());
}

TEST_F(FrameTest, stepsDrawIntoTheirTargets) {
    ovVeldrisWrap::Frame frame;
    const auto first = makeTarget();
    const auto second = makeTarget();
    frame.drawInto(*first, nullptr);
    EXPECT_TRUE(frame.clear({1, 0, 0, 1}));
    frame.drawInto(*second, nullptr);
    EXPECT_TRUE(frame.clear({0, 1, 0, 1}));
    EXPECT_TRUE(frame.draw());
    EXPECT_EQ(*first->readBack(), (ovMemory::Buffer<unsigned char>{255, 0, 0, 255}));
    EXPECT_EQ(*second->readBack(), (ovMemory::Buffer<unsigned char>{0, 255, 0, 255}));
}

TEST_F(FrameTest, aTargetThatIsGoneEndsTheFrame) {
    ovVeldrisWrap::Frame frame;
    auto target = makeTarget();
    frame.drawInto(*target, nullptr);
    frame.clear({1, 0, 0, 1});
    target.reset();
    EXPECT_FALSE(frame.draw());
}
