#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

class DrawListTest : public PictureTest {
protected:
    void SetUp() override {
        PictureTest::SetUp();
        _queue = RenderQueue::create(&getGraphics());
        _mesh = makeSquare(getGraphics());
    }
    void TearDown() override {
        _list.unload();
        _queue.reset();
        _mesh.reset();
        PictureTest::TearDown();
    }
    bool update(const Camera* camera = nullptr, const DrawListSettings& settings = {}) {
        ovMemory::String error;
        return _list.update(getGraphics(), *_queue, camera, settings, error);
    }

    ovMemory::UniquePtr<RenderQueue> _queue;
    ovMemory::UniquePtr<Mesh> _mesh;
    DrawList _list;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, DrawListTest, bothLanguages(), languageName);

TEST_P(DrawListTest, joinsEqualEntitiesAndKeepsDifferentOnesApart) {
    const SceneShader first(getGraphics(), {});
    const SceneShader second(getGraphics(), {});
    const auto plain = makeNode(getGraphics(), {1.0f, 0.0f});
    const auto mirrored = makeNode(getGraphics(), {});
    mirrored->setScale({-1.0f, 1.0f, 1.0f});
    _queue->addEntity(_mesh.get(), &*second, plain.get());
    _queue->addEntity(_mesh.get(), &*first, plain.get());
    _queue->addEntity(_mesh.get(), &*second, mirrored.get());
    _queue->addEntity(_mesh.get(), &*first, plain.get());
    _queue->addEntity(_mesh.get(), &*first, plain.get())->setDoubleSided(true);
    _queue->addEntity(nullptr, &*first, plain.get());
    _queue->addEntity(_mesh.get(), nullptr, plain.get());
    ASSERT_TRUE(update());
    struct Case {
        const Shader* shader;
        bool doubleSided, mirrored;
        unsigned int firstInstance, instanceCount;
    };
    const Case cases[] = {{&*first, false, false, 0, 2},
                          {&*first, true, false, 2, 1},
                          {&*second, false, false, 3, 1},
                          {&*second, false, true, 4, 1}};
    ASSERT_EQ(_list.getBatches().size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const DrawList::Batch& batch = _list.getBatches()[i];
        EXPECT_EQ(batch.shader, cases[i].shader) << i;
        EXPECT_EQ(batch.doubleSided, cases[i].doubleSided) << i;
        EXPECT_EQ(batch.mirrored, cases[i].mirrored) << i;
        EXPECT_EQ(batch.draw.firstInstance, cases[i].firstInstance) << i;
        EXPECT_EQ(batch.draw.instanceCount, cases[i].instanceCount) << i;
        EXPECT_EQ(batch.draw.instanceStride, 128u) << i;
    }
}

TEST_P(DrawListTest, instancesOfShadersWithOtherSlotsBeginAtWholeStrides) {
    const SceneShader both(getGraphics(), {});
    const TestShader none(getGraphics(), SCENE_PIXEL_TEXT, SCENE_VERTEX_TEXT);
    const TestShader one(getGraphics(), SCENE_PIXEL_TEXT, SCENE_VERTEX_TEXT);
    one.shader->addInstanceMemorySlot();
    const TestShader three(getGraphics(), SCENE_PIXEL_TEXT, SCENE_VERTEX_TEXT);
    for (int i = 0; i < 3; ++i)
        three.shader->addInstanceMemorySlot();
    _queue->addEntity(_mesh.get(), &*both, nullptr);
    _queue->addEntity(_mesh.get(), &*none, nullptr);
    _queue->addEntity(_mesh.get(), &*one, nullptr);
    _queue->addEntity(_mesh.get(), &*three, nullptr);
    ASSERT_TRUE(update());
    ASSERT_EQ(_list.getBatches().size(), 4u);
    const unsigned int strides[] = {128, 0, 64, 192};
    const unsigned int firsts[] = {0, 0, 2, 1}; // the last begins at byte 192, exactly where the third ends
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(_list.getBatches()[i].draw.instanceStride, strides[i]) << i;
        EXPECT_EQ(_list.getBatches()[i].draw.firstInstance, firsts[i]) << i;
    }
    ASSERT_NE(_list.getInstances(), nullptr);
    EXPECT_GE(_list.getInstances()->getSize(), 384u);
}

TEST_P(DrawListTest, boxesWithoutPointsAreAlwaysDrawn) {
    const SceneShader shader(getGraphics(), {});
    VertexComposition composition;
    ASSERT_TRUE(composition.addAttribute("PLACE", FORMAT::R32G32B32_FLOAT));
    const auto unbounded = Mesh::create(&getGraphics());
    unbounded->setVertexComposition(composition);
    unbounded->setNewVertexArray(ovMemory::Buffer<unsigned char>(36));
    ASSERT_TRUE(unbounded->load());
    const auto node = makeNode(getGraphics(), {500.0f, 0.0f, 0.0f});
    _queue->addEntity(unbounded.get(), &*shader, node.get());
    _queue->addEntity(_mesh.get(), &*shader, node.get());
    const auto camera = Camera::create(&getGraphics());
    ASSERT_TRUE(update(camera.get()));
    ASSERT_EQ(_list.getBatches().size(), 1u);
    EXPECT_EQ(_list.getBatches()[0].mesh, unbounded.get());
}

TEST_P(DrawListTest, whatWasNowhereIsDrawnAgainWhenItIsSomewhere) {
    const SceneShader shader(getGraphics(), {});
    const auto node = makeNode(getGraphics(), {});
    const auto camera = Camera::create(&getGraphics());
    camera->setOrthographic(4.0f, 4.0f, 1.0f, 10.0f);
    camera->setPosition({0.0f, 0.0f, -5.0f});
    _queue->addEntity(_mesh.get(), &*shader, node.get());
    const float infinite = std::numeric_limits<float>::infinity();
    struct Case {
        Vector position;
        std::size_t batches;
    };
    // Moves alone, so that the box is moved and not made anew.
    const Case cases[] = {{{0.0f, 0.0f}, 1},  {{50.0f, 0.0f}, 0},    {{infinite, 0.0f}, 1},
                          {{50.0f, 0.0f}, 0}, {{infinite, 0.0f}, 1}, {{1.0f, 0.0f}, 1}};
    for (const auto& [position, batches] : cases) {
        node->setPosition(position);
        ASSERT_TRUE(update(camera.get()));
        EXPECT_EQ(_list.getBatches().size(), batches) << position.x;
    }
}
