#include <ovVeldris/scripts/veldrisWrap/Frame.h>

#include <cstring>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
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

    /// A shader that draws (1, 1, 1, 0.5), at corners that are positions in clip space.
    void makeShader() {
        ovGraphics::ProgramSourcesHolder sources;
        sources.setVertexMemory("in vec3 POSITION; void main() { gl_Position = vec4(POSITION, 1.0); }");
        sources.setPixelMemory("out vec4 OUT_COLOR; void main() { OUT_COLOR = vec4(1.0, 1.0, 1.0, 0.5); }");
        _program->setSources(sources);
        _shader->setProgram(_program.get());
        ASSERT_TRUE(_program->load() && _shader->load()) << getLogger().getText();
    }
    /// A triangle over the whole target at a depth of clip space.
    void makeMesh(float depth) {
        ovGraphics::VertexComposition composition;
        composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
        _mesh->setVertexComposition(composition);
        const ovMaths::Vector corners[] = {{-1, -1, depth}, {3, -1, depth}, {-1, 3, depth}};
        ASSERT_TRUE(_mesh->fillPackedFromUnpacked(corners));
        ASSERT_TRUE(_mesh->load()) << getLogger().getText();
        _queue->addEntity(_mesh.get(), _shader.get(), nullptr)->setDoubleSided(true);
    }

    ovMemory::UniquePtr<ovGraphics::Program> _program = ovGraphics::Program::create(nullptr);
    ovMemory::UniquePtr<ovGraphics::Shader> _shader = ovGraphics::Shader::create(nullptr);
    ovMemory::UniquePtr<ovGraphics::Mesh> _mesh = ovGraphics::Mesh::create(nullptr);
    ovMemory::UniquePtr<ovGraphics::Camera> _camera = ovGraphics::Camera::create(nullptr);
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _queue = ovGraphics::RenderQueue::create(nullptr);
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

TEST_F(FrameTest, queuesAreDrawnSolidOrBlended) {
    makeShader();
    makeMesh(0.5f); // in front of the camera: others are culled
    const auto target = makeTarget();
    ovVeldrisWrap::Frame solid;
    solid.drawInto(*target, nullptr);
    solid.clear({0, 0, 0, 1});
    EXPECT_TRUE(solid.drawQueue(*_queue, *_camera, false));
    EXPECT_TRUE(solid.draw());
    EXPECT_EQ((*target->readBack())[0], 255) << getLogger().getText();
    ovVeldrisWrap::Frame blended;
    blended.drawInto(*target, nullptr);
    blended.clear({0, 0, 0, 1});
    EXPECT_TRUE(blended.drawQueue(*_queue, *_camera, true));
    EXPECT_TRUE(blended.draw());
    EXPECT_NEAR((*target->readBack())[0], 127.5, 0.6) << "half of white over black";
    EXPECT_EQ((*target->readBack())[3], 255) << "what was covered stays so";
}

TEST_F(FrameTest, theDepthHidesWhatLiesBehind) {
    makeShader();
    makeMesh(0.5f);
    const auto target = makeTarget();
    const auto depth = ovGraphics::Texture::create(nullptr);
    depth->setFormat(ovGraphics::FORMAT::D32_FLOAT);
    depth->setUsableAsRenderTarget(true);
    ASSERT_TRUE(depth->load());
    ovVeldrisWrap::Frame frame;
    frame.drawInto(*target, depth.get());
    frame.clear({0, 0, 0, 1});
    frame.drawQueue(*_queue, *_camera, false);
    frame.drawInto(*target, depth.get()); // with the depth of the first
    frame.drawQueue(*_queue, *_camera, true);
    EXPECT_TRUE(frame.draw());
    EXPECT_EQ((*target->readBack())[0], 255);
    float stored = 0.0f;
    std::memcpy(&stored, depth->readBack()->data(), sizeof(stored));
    EXPECT_NEAR(stored, 0.75f, 1e-6) << "of -1 to 1";
}

TEST_F(FrameTest, shadersAreDrawnOverTheWholeTarget) {
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(
        "void main() { gl_Position = vec4(gl_VertexID % 2 * 4 - 1, gl_VertexID / 2 * 4 - 1, "
        "0.0, 1.0); }");
    sources.setPixelMemory("out vec4 OUT_COLOR; void main() { OUT_COLOR = vec4(0.2, 0.4, 0.6, 1.0); }");
    _program->setSources(sources);
    _shader->setProgram(_program.get());
    ASSERT_TRUE(_program->load() && _shader->load()) << getLogger().getText();
    const auto target = makeTarget();
    ovVeldrisWrap::Frame frame;
    frame.drawInto(*target, nullptr);
    EXPECT_TRUE(frame.drawShader(*_shader, nullptr));
    EXPECT_TRUE(frame.draw());
    EXPECT_EQ(*target->readBack(), (ovMemory::Buffer<unsigned char>{51, 102, 153, 255}));
}

TEST_F(FrameTest, complexEffectsFindTheirPlace) {
    ovVeldrisWrap::Frame frame;
    const auto target = makeTarget();
    frame.drawInto(*target, nullptr);
    frame.clear({1, 0, 0, 1});
    ovGraphics::CompositorNode* node = frame.appendNode();
    ovGraphics::CompositorOperationsBlock* block = node->appendOperationsBlock();
    block->setTarget(0, target.get());
    block->appendClearPass()->setColor(0, 0, 0, 1, 1);
    EXPECT_TRUE(frame.draw());
    EXPECT_EQ(*target->readBack(), (ovMemory::Buffer<unsigned char>{0, 0, 255, 255})) << "behind the first";
}

TEST_F(FrameTest, aTargetThatIsGoneEndsTheFrame) {
    ovVeldrisWrap::Frame frame;
    auto target = makeTarget();
    frame.drawInto(*target, nullptr);
    frame.clear({1, 0, 0, 1});
    target.reset();
    EXPECT_FALSE(frame.draw());
}
