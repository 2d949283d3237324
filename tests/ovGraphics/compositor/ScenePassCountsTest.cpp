// What scene passes ask a device for, counted by one that draws nothing.
#include <gtest/gtest.h>
#include <ovGraphics/device/CountingDevice.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <support/RecordingLogger.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

class ScenePassCountsTest : public testing::Test {
protected:
    void SetUp() override {
        auto device = std::make_unique<device::CountingDevice>();
        _device = device.get();
        Configuration configuration;
        configuration.logger = &_logger;
        ASSERT_TRUE(_system.initialize(configuration, std::move(device)));
        _target = Texture::create(&_system);
        _target->setUsableAsRenderTarget(true);
        ASSERT_TRUE(_target->load());
        _stage = std::make_unique<Stage>(_system, *_target, 4.0f);
        _square = makeSquare(_system);
    }
    void TearDown() override { EXPECT_EQ(_logger.getText(), ""); }

    SceneShader& addShader(float color) {
        return *_shaders.emplace_back(std::make_unique<SceneShader>(_system, Vector(color, 0.0f)));
    }
    /// A frame; how much it uploaded.
    uint64_t uploadsOfAFrame() {
        const uint64_t before = _device->getCounts().bufferUploads;
        EXPECT_TRUE(_stage->canvas.frame());
        _device->nextFrame();
        return _device->getCounts().bufferUploads - before;
    }
    uint64_t drawsOfAFrame() {
        const uint64_t before = _device->getCounts().draws;
        uploadsOfAFrame();
        return _device->getCounts().draws - before;
    }

    RecordingLogger _logger;
    System _system;
    device::CountingDevice* _device = nullptr;
    ovMemory::UniquePtr<Texture> _target;
    ovMemory::UniquePtr<Stage> _stage;
    ovMemory::UniquePtr<Mesh> _square;
    ovMemory::Buffer<ovMemory::UniquePtr<SceneShader>> _shaders;
};

} // namespace

TEST_F(ScenePassCountsTest, theViewIsUploadedOnceForAHundredMaterials) {
    for (int i = 0; i < 100; ++i)
        _stage->queue->addEntity(_square.get(), &*addShader(static_cast<float>(i)), nullptr);
    EXPECT_EQ(uploadsOfAFrame(), 102u) << "the instances, the view, and the constants of each material";
    EXPECT_EQ(uploadsOfAFrame(), 0u);
    _stage->camera->setPosition({1.0f, 0.0f, -10.0f});
    EXPECT_EQ(uploadsOfAFrame(), 1u);
    _stage->camera->setPosition({1.0f, 0.0f, -10.0f});
    EXPECT_EQ(uploadsOfAFrame(), 0u) << "the same place";
    _stage->camera->setPosition({0.0f, 0.0f, -10.0f});
    EXPECT_EQ(uploadsOfAFrame(), 0u) << "a view that is still there";
    _shaders[7]->shader->getConstantBuffer(1, 0)->getPassMemorySlot(0)->setFromVector({200.0f, 0.0f});
    EXPECT_EQ(uploadsOfAFrame(), 1u) << "the constants of one material";
}

TEST_F(ScenePassCountsTest, noUploadGoesWhereTheFrameBeforeReads) {
    const auto node = makeNode(_system, {});
    Entity* entity = _stage->queue->addEntity(_square.get(), &*addShader(1.0f), node.get());
    _stage->queue->addEntity(_square.get(), &*addShader(2.0f), nullptr);
    ShaderPassMemorySlot* slot = _shaders[0]->shader->getConstantBuffer(1, 0)->getPassMemorySlot(0);
    for (int frame = 0; frame < 50; ++frame) {
        const float time = static_cast<float>(frame) * 0.01f;
        _stage->camera->setPosition({time, 0.0f, -10.0f});
        node->setPosition({0.0f, time, 0.0f});
        slot->setFromVector({time, 3.0f});
        entity->setVisible(frame % 5 != 0);
        EXPECT_GE(uploadsOfAFrame(), frame % 5 != 0 ? 3u : 1u);
    }
    EXPECT_EQ(_device->getCounts().uploadsToBuffersInUse, 0u);
    EXPECT_LE(_device->getCounts().objects, 60u) << "buffers come again";
}

TEST_F(ScenePassCountsTest, equalDepthsKeepTheOrderOfAddition) {
    Shader& first = *addShader(1.0f);
    Shader& second = *addShader(2.0f);
    for (Shader* shader : {&second, &first, &second, &first})
        _stage->queue->addEntity(_square.get(), shader, nullptr);
    _stage->pass->setOrder(SCENE_ORDER::BACK_TO_FRONT);
    EXPECT_EQ(drawsOfAFrame(), 4u);
    _stage->pass->setCamera(nullptr);
    EXPECT_EQ(drawsOfAFrame(), 4u) << "without a camera";
    _stage->queue->addEntity(_square.get(), &first, nullptr);
    EXPECT_EQ(drawsOfAFrame(), 4u) << "neighbours are drawn at once";
    _stage->pass->setOrder(SCENE_ORDER::BY_STATE);
    EXPECT_EQ(drawsOfAFrame(), 2u);
}

TEST_F(ScenePassCountsTest, oneDepthShaderBatchesAcrossMaterials) {
    SceneShader& depth = addShader(0.0f);
    for (int i = 0; i < 20; ++i) {
        const auto shader = &*addShader(static_cast<float>(i));
        _stage->queue->addEntity(_square.get(), shader, nullptr)->setShader(&*depth, 1);
    }
    EXPECT_EQ(drawsOfAFrame(), 20u);
    _stage->pass->setShaderVariant(1);
    EXPECT_EQ(drawsOfAFrame(), 1u);
}

TEST_F(ScenePassCountsTest, aQueueThatIsNotDrawnIsNotLookedAt) {
    _stage->queue->addEntity(_square.get(), &*addShader(1.0f), nullptr);
    const auto other = RenderQueue::create(&_system);
    Entity* entity = other->addEntity(_square.get(), &*addShader(2.0f), nullptr);
    uploadsOfAFrame();
    const uint64_t calls = _device->getCounts().setCalls;
    uploadsOfAFrame();
    const uint64_t still = _device->getCounts().setCalls - calls;
    entity->setVisible(false);
    EXPECT_EQ(uploadsOfAFrame(), 0u);
    EXPECT_EQ(_device->getCounts().setCalls - calls, 2 * still);
}

TEST_F(ScenePassCountsTest, withoutDepthClippingNearAndFarLeaveNothingOut) {
    const auto node = makeNode(_system, {0.0f, 0.0f, 500.0f});
    _stage->queue->addEntity(_square.get(), &*addShader(1.0f), node.get());
    EXPECT_EQ(drawsOfAFrame(), 0u);
    _stage->pass->getRasterState().setDepthClipEnabled(false);
    EXPECT_EQ(drawsOfAFrame(), 1u);
    node->setPosition({50.0f, 0.0f, 500.0f});
    EXPECT_EQ(drawsOfAFrame(), 0u) << "the sides do";
}
