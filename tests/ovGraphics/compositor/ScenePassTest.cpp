#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <support/PictureTest.h>
#include <support/heap/Heap.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

class ScenePassTest : public PictureTest {
protected:
    /// The first component of every texel, rows from the top, as digits.
    static ovMemory::String digits(const FloatPicture& picture) {
        ovMemory::String text;
        for (unsigned int y = 0; y < picture.height; ++y) {
            for (unsigned int x = 0; x < picture.width; ++x)
                text += static_cast<char>('0' + static_cast<int>(picture.at(x, y)[0]));
            text += '\n';
        }
        return text;
    }

    ovMemory::UniquePtr<Texture> makeDepth(unsigned int size) {
        auto depth = Texture::create(&getGraphics());
        depth->setFormat(FORMAT::D32_FLOAT);
        depth->setWidth(size);
        depth->setHeight(size);
        depth->setUsableAsRenderTarget(true);
        EXPECT_TRUE(depth->load());
        return depth;
    }
};

constexpr uint64_t NO_DRAWS = 0;

} // namespace

INSTANTIATE_TEST_SUITE_P(, ScenePassTest, bothLanguages(), languageName);

TEST_P(ScenePassTest, drawsEntitiesWhereTheirNodesAreUpright) {
    const auto target = makeTarget(4, 4);
    Stage stage(getGraphics(), *target, 4.0f);
    const auto square = makeSquare(getGraphics());
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    const SceneShader two(getGraphics(), {2.0f, 0.0f});
    ASSERT_TRUE(one.loaded && two.loaded) << getGraphicsLogger().getText();
    const auto left = makeNode(getGraphics(), {-1.5f, 1.5f, 0.0f});
    const auto right = makeNode(getGraphics(), {3.0f, -1.5f, 0.0f});
    right->setScale({1.0f, 2.0f, 1.0f});
    ASSERT_TRUE(right->setParent(left.get())); // at (1.5, 0)
    stage.queue->addEntity(square.get(), &*one, left.get());
    stage.queue->addEntity(square.get(), &*two, right.get());
    ASSERT_TRUE(stage.canvas.frame());
    EXPECT_EQ(digits(readFloats(*target)), "1000\n"
                                           "0002\n"
                                           "0002\n"
                                           "0000\n");

    left->setPosition({-0.5f, 1.5f, 0.0f});
    right->setPosition({1.0f, -1.5f, 0.0f});
    ASSERT_TRUE(stage.canvas.frame());
    EXPECT_EQ(digits(readFloats(*target)), "0100\n"
                                           "0020\n"
                                           "0020\n"
                                           "0000\n");
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(ScenePassTest, drawsEqualEntitiesAtOnceAndChangesAsLittleAsItCan) {
    const auto target = makeTarget(8, 8);
    Stage stage(getGraphics(), *target, 8.0f);
    const auto square = makeSquare(getGraphics());
    const Vector corners[] = {{-0.5f, -0.5f, 0.0f}, {-0.5f, 0.5f, 0.0f}, {0.5f, 0.5f, 0.0f}};
    const auto triangle = makeMesh(getGraphics(), corners);
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    const SceneShader two(getGraphics(), {2.0f, 0.0f});
    ovMemory::Buffer<ovMemory::UniquePtr<Node>> nodes;
    for (int i = 0; i < 64; ++i) {
        nodes.push_back(makeNode(getGraphics(),
                                 {static_cast<float>(i % 8) - 3.5f, 3.5f - static_cast<float>(i / 8), 0.0f}));
        stage.queue->addEntity(i % 3 ? square.get() : triangle.get(), i % 2 ? &*one : &*two,
                               nodes.back().get());
    }
    const device::Device& device = *getGraphics().getDevice();
    ASSERT_TRUE(stage.canvas.frame());
    const FloatPicture picture = readFloats(*target);
    for (unsigned int i = 0; i < 64; ++i) { // the middle of a texel lies on the triangle's long side
        if (i % 3 == 0)
            continue;
        EXPECT_EQ(picture.at(i % 8, i / 8)[0], i % 2 ? 1.0f : 2.0f) << i;
    }
    const uint64_t draws = device.getStatistics().drawCalls;
    const uint64_t uploads = device.getStatistics().bufferUploads;
    const std::size_t allocations = getAllocationCount();
    ASSERT_TRUE(stage.canvas.frame());
    EXPECT_EQ(getAllocationCount(), allocations) << "an unchanged frame allocates";
    EXPECT_EQ(device.getStatistics().drawCalls - draws, 4u) << "two meshes by two shaders";
    EXPECT_EQ(device.getStatistics().bufferUploads, uploads) << "nothing changed";

    nodes[0]->setPosition({-3.0f, 3.5f, 0.0f});
    ASSERT_TRUE(stage.canvas.frame());
    EXPECT_EQ(device.getStatistics().bufferUploads, uploads + 1) << "the instances' data";
}

TEST_P(ScenePassTest, leavesOutWhatTheCameraDoesNotSee) {
    const auto target = makeTarget(4, 4);
    Stage stage(getGraphics(), *target, 4.0f);
    const auto square = makeSquare(getGraphics());
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    const auto node = makeNode(getGraphics(), {});
    stage.queue->addEntity(square.get(), &*one, node.get());
    const auto draws = [&] {
        const uint64_t before = getGraphics().getDevice()->getStatistics().drawCalls;
        EXPECT_TRUE(stage.canvas.frame());
        return getGraphics().getDevice()->getStatistics().drawCalls - before;
    };
    struct Case {
        Vector position;
        uint64_t draws;
    };
    const Case cases[] = {{{0.0f, 0.0f, 0.0f}, 1},  {{2.4f, 0.0f, 0.0f}, 1},  {{2.6f, 0.0f, 0.0f}, 0},
                          {{-2.6f, 0.0f, 0.0f}, 0}, {{0.0f, 2.6f, 0.0f}, 0},  {{0.0f, -2.6f, 0.0f}, 0},
                          {{0.0f, 0.0f, -9.5f}, 0}, {{0.0f, 0.0f, 90.5f}, 0}, {{0.0f, 0.0f, 89.5f}, 1}};
    for (const Case& c : cases) {
        node->setPosition(c.position);
        EXPECT_EQ(draws(), c.draws) << c.position.toString();
    }
    stage.pass->setFrustumCullingEnabled(false);
    node->setPosition({9.0f, 0.0f, 0.0f});
    EXPECT_EQ(draws(), 1u);
    stage.pass->setFrustumCullingEnabled(true);
    EXPECT_EQ(draws(), NO_DRAWS);
    stage.camera->setPosition({9.0f, 0.0f, -10.0f});
    EXPECT_EQ(draws(), 1u) << "the camera moved";
    stage.queue->getEntity(0)->setVisible(false);
    EXPECT_EQ(draws(), NO_DRAWS);
}

TEST_P(ScenePassTest, knowsFrontFacesAlsoOfMirroredNodes) {
    const auto target = makeTarget(2, 2);
    Stage stage(getGraphics(), *target, 1.0f);
    const auto square = makeSquare(getGraphics());
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    const auto node = makeNode(getGraphics(), {});
    Entity* entity = stage.queue->addEntity(square.get(), &*one, node.get());
    const auto isSeen = [&](const Vector& scale, bool turned) {
        node->setScale(scale);
        ovMaths::Quaternion half;
        half.setFromAxisAngle({0.0f, 1.0f, 0.0f}, turned ? 3.14159265f : 0.0f);
        node->setOrientation(half);
        EXPECT_TRUE(stage.canvas.frame());
        return readFloats(*target).at(0, 0)[0] == 1.0f;
    };
    EXPECT_TRUE(isSeen({1.0f, 1.0f, 1.0f}, false));
    EXPECT_TRUE(isSeen({-1.0f, 1.0f, 1.0f}, false));
    EXPECT_TRUE(isSeen({-1.0f, -1.0f, 1.0f}, false));
    EXPECT_FALSE(isSeen({1.0f, 1.0f, 1.0f}, true));
    EXPECT_FALSE(isSeen({-1.0f, 1.0f, 1.0f}, true));
    entity->setDoubleSided(true);
    EXPECT_TRUE(isSeen({1.0f, 1.0f, 1.0f}, true));
    stage.pass->getRasterState().setCullMode(CULL_MODE::FRONT);
    entity->setDoubleSided(false);
    EXPECT_TRUE(isSeen({1.0f, 1.0f, 1.0f}, true));
    EXPECT_FALSE(isSeen({1.0f, 1.0f, 1.0f}, false));
    // Fronts that run the other way round, on mirrored nodes, too.
    stage.pass->getRasterState().setCullMode(CULL_MODE::BACK);
    stage.pass->getRasterState().setFrontCounterClockwise(true);
    for (const float mirror : {1.0f, -1.0f}) {
        EXPECT_FALSE(isSeen({mirror, 1.0f, 1.0f}, false));
        EXPECT_TRUE(isSeen({mirror, 1.0f, 1.0f}, true));
    }
}

TEST_P(ScenePassTest, tellsSidesApartWithinAFrame) {
    for (const bool isFirstDoubleSided : {false, true}) {
        const auto target = makeTarget(2, 1);
        Stage stage(getGraphics(), *target, 2.0f);
        const auto square = makeSquare(getGraphics());
        const SceneShader one(getGraphics(), {1.0f, 0.0f});
        const SceneShader two(getGraphics(), {2.0f, 0.0f});
        ovMaths::Quaternion half;
        half.setFromAxisAngle({0.0f, 1.0f, 0.0f}, 3.14159265f);
        const auto left = makeNode(getGraphics(), {-0.5f, 0.0f, 0.0f});
        const auto right = makeNode(getGraphics(), {0.5f, 0.0f, 0.0f});
        left->setOrientation(half);
        right->setOrientation(half);
        stage.queue->addEntity(square.get(), &*one, left.get())->setDoubleSided(isFirstDoubleSided);
        stage.queue->addEntity(square.get(), &*two, right.get())->setDoubleSided(!isFirstDoubleSided);
        ASSERT_TRUE(stage.canvas.frame());
        EXPECT_EQ(digits(readFloats(*target)), isFirstDoubleSided ? "10\n" : "02\n");
    }
}

TEST_P(ScenePassTest, turnsNormalsByTheInverseTranspose) {
    const auto target = makeTarget(2, 2);
    Stage stage(getGraphics(), *target, 1.0f);
    // A slope: its normal (-1, 0, -1) must stay across the surface when that is stretched.
    const Vector corners[] = {
        {-1.0f, -1.0f, -1.0f}, {-1.0f, 1.0f, -1.0f}, {1.0f, 1.0f, 1.0f}, {1.0f, -1.0f, 1.0f}};
    const auto mesh = makeMesh(getGraphics(), corners, {0, 1, 2, 0, 2, 3});
    const SceneShader shader(getGraphics(), {0.0f, 0.0f, 0.0f, 1.0f}, true);
    const auto node = makeNode(getGraphics(), {});
    node->setScale({2.0f, 4.0f, 8.0f});
    stage.queue->addEntity(mesh.get(), &*shader, node.get());
    ASSERT_TRUE(stage.canvas.frame());
    const FloatPicture picture = readFloats(*target);
    // The mesh's normals are (0, 0, -1); its inverse transpose scales z by 1 / 8.
    EXPECT_EQ(picture.at(0, 0)[2], -0.125f);
    EXPECT_EQ(picture.at(1, 1)[0], 0.0f);
}

TEST_P(ScenePassTest, blendsFromBackToFront) {
    const auto target = makeTarget(2, 2);
    Stage stage(getGraphics(), *target, 1.0f);
    const auto square = makeSquare(getGraphics());
    const SceneShader one(getGraphics(), {1.0f, 0.0f, 0.0f, 0.5f});
    const SceneShader two(getGraphics(), {2.0f, 0.0f, 0.0f, 0.5f});
    const auto nearNode = makeNode(getGraphics(), {0.0f, 0.0f, 1.0f});
    const auto farNode = makeNode(getGraphics(), {0.0f, 0.0f, 2.0f});
    stage.queue->addEntity(square.get(), &*one, nearNode.get());
    stage.queue->addEntity(square.get(), &*two, farNode.get());
    stage.pass->setOrder(SCENE_ORDER::BACK_TO_FRONT);
    stage.pass->getDepthStencilState().setDepthTestEnabled(false);
    BlendState& blend = stage.pass->getBlendState();
    blend.setBlendEnabled(true, 0);
    blend.setSourceFactor(BLEND::SRC_ALPHA, 0);
    blend.setDestinationFactor(BLEND::INV_SRC_ALPHA, 0);
    const auto drawn = [&] {
        EXPECT_TRUE(stage.canvas.frame());
        return readFloats(*target).at(0, 0)[0];
    };
    EXPECT_EQ(drawn(), 0.5f * (0.5f * 2.0f) + 0.5f * 1.0f);
    nearNode->setPosition({0.0f, 0.0f, 3.0f});
    EXPECT_EQ(drawn(), 0.5f * (0.5f * 1.0f) + 0.5f * 2.0f);
    stage.camera->setPosition({0.0f, 0.0f, 10.0f});
    stage.camera->lookAt({0.0f, 0.0f, -1.0f}, {});
    stage.pass->getRasterState().setCullMode(CULL_MODE::NONE);
    EXPECT_EQ(drawn(), 0.5f * (0.5f * 2.0f) + 0.5f * 1.0f) << "seen from behind";
}

TEST_P(ScenePassTest, testsDepth) {
    const auto target = makeTarget(2, 2);
    const auto depth = makeDepth(2);
    Stage stage(getGraphics(), *target, 1.0f, depth.get());
    const auto square = makeSquare(getGraphics());
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    const SceneShader two(getGraphics(), {2.0f, 0.0f});
    const auto nearNode = makeNode(getGraphics(), {0.0f, 0.0f, 1.0f});
    const auto farNode = makeNode(getGraphics(), {0.0f, 0.0f, 2.0f});
    stage.queue->addEntity(square.get(), &*two, nearNode.get());
    stage.queue->addEntity(square.get(), &*one, farNode.get());
    ASSERT_TRUE(stage.canvas.frame());
    EXPECT_EQ(readFloats(*target).at(1, 1)[0], 2.0f);
    const auto bytes = depth->readBack();
    ASSERT_TRUE(bytes);
    float value = 0.0f;
    std::memcpy(&value, bytes->data(), sizeof(value));
    EXPECT_NEAR(value, 10.0f / 99.0f, 1e-5f) << "11 m from the camera, planes at 1 and 100";
}

TEST_P(ScenePassTest, drawsTheVariantThatItIsAskedFor) {
    const auto target = makeTarget(2, 2);
    Stage stage(getGraphics(), *target, 1.0f);
    const auto square = makeSquare(getGraphics());
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    const SceneShader two(getGraphics(), {2.0f, 0.0f});
    Entity* entity = stage.queue->addEntity(square.get(), &*one, nullptr);
    const auto drawn = [&](unsigned int variant) {
        stage.pass->setShaderVariant(variant);
        EXPECT_TRUE(stage.canvas.frame());
        return readFloats(*target).at(0, 0)[0];
    };
    EXPECT_EQ(drawn(0), 1.0f);
    EXPECT_EQ(drawn(1), 0.0f) << "the entity has no such shader";
    entity->setShader(&*two, 1);
    EXPECT_EQ(drawn(1), 2.0f);
    EXPECT_EQ(drawn(7), 0.0f) << "there are four variants";
    entity->setShader(&*two, 7);
    EXPECT_EQ(entity->getShader(7), nullptr);
    EXPECT_EQ(getGraphicsLogger().getText(), "");
}

TEST_P(ScenePassTest, survivesTheEndOfEverythingThatItDraws) {
    const auto target = makeTarget(2, 2);
    Stage stage(getGraphics(), *target, 1.0f);
    auto square = makeSquare(getGraphics());
    auto one = std::make_unique<SceneShader>(getGraphics(), Vector(1.0f, 0.0f));
    auto node = makeNode(getGraphics(), {});
    stage.queue->addEntity(square.get(), &**one, node.get());
    const auto drawn = [&] {
        EXPECT_TRUE(stage.canvas.frame());
        return readFloats(*target).at(0, 0)[0];
    };
    EXPECT_EQ(drawn(), 1.0f);
    node.reset();
    EXPECT_EQ(drawn(), 1.0f) << "at the origin";
    square->unload();
    EXPECT_EQ(drawn(), 0.0f);
    ASSERT_TRUE(square->load());
    EXPECT_EQ(drawn(), 1.0f);
    square.reset();
    EXPECT_EQ(drawn(), 0.0f);
    square = makeSquare(getGraphics());
    stage.queue->getEntity(0)->setMesh(square.get());
    EXPECT_EQ(drawn(), 1.0f);
    stage.canvas.compositor->unload();
    EXPECT_EQ(drawn(), 1.0f);
    one.reset();
    EXPECT_EQ(drawn(), 0.0f);
    EXPECT_EQ(getGraphicsLogger().getText(), "");

    stage.queue.reset();
    EXPECT_EQ(drawn(), 0.0f);
    EXPECT_EQ(
        getGraphicsLogger().getText(),
        "[CompositorPass] The pass 'scene' draws nothing: it needs a render queue of this graphics system, "
        "and its entities loaded shaders and meshes.\n");
}

TEST_P(ScenePassTest, drawsEveryTopology) {
    const auto target = makeTarget(4, 4);
    Stage stage(getGraphics(), *target, 4.0f);
    const SceneShader one(getGraphics(), {1.0f, 0.0f});
    struct Case {
        PRIMITIVE_TOPOLOGY topology;
        ovMemory::Buffer<Vector> positions;
        ovMemory::Buffer<uint32_t> indices;
        const char* picture;
    };
    const Vector a(-1.5f, 1.5f, 0.0f), b(1.5f, 1.5f, 0.0f), c(1.5f, -1.5f, 0.0f);
    const Vector topLeft(-2.0f, 2.0f, 0.0f), topRight(2.0f, 2.0f, 0.0f), middleLeft(-2.0f, 0.0f, 0.0f),
        middleRight(2.0f, 0.0f, 0.0f), bottomLeft(-2.0f, -2.0f, 0.0f), bottomRight(2.0f, -2.0f, 0.0f);
    constexpr uint32_t CUT = 0xffffffff;
    const Case cases[] = {
        {PRIMITIVE_TOPOLOGY::POINTLIST, {a, c}, {}, "1000\n0000\n0000\n0001\n"},
        {PRIMITIVE_TOPOLOGY::POINTLIST, {a, b, c}, {1}, "0001\n0000\n0000\n0000\n"},
        {PRIMITIVE_TOPOLOGY::TRIANGLESTRIP,
         {middleLeft, topLeft, middleRight, topRight},
         {},
         "1111\n1111\n0000\n0000\n"},
        {PRIMITIVE_TOPOLOGY::TRIANGLESTRIP,
         {middleLeft, topLeft, middleRight, topRight, bottomLeft, bottomRight},
         {0, 1, 2, CUT, 4, 0, 5},
         "1000\n1110\n1000\n1110\n"},
    };
    for (const Case& current : cases) {
        const auto mesh = makeMesh(getGraphics(), current.positions, current.indices, current.topology);
        stage.queue->clearQueue();
        stage.queue->addEntity(mesh.get(), &*one, nullptr);
        ASSERT_TRUE(stage.canvas.frame());
        const ovMemory::String picture = digits(readFloats(*target));
        EXPECT_EQ(picture, current.picture);
    }
    const auto lines = makeMesh(getGraphics(), std::array{a, b, b, c}, {}, PRIMITIVE_TOPOLOGY::LINELIST);
    const auto strip = makeMesh(getGraphics(), std::array{a, b, c}, {}, PRIMITIVE_TOPOLOGY::LINESTRIP);
    const auto drawnWith = [&](Mesh& mesh) {
        stage.queue->clearQueue();
        stage.queue->addEntity(&mesh, &*one, nullptr);
        EXPECT_TRUE(stage.canvas.frame());
        return digits(readFloats(*target));
    };
    EXPECT_EQ(drawnWith(*lines), drawnWith(*strip));
    EXPECT_EQ(drawnWith(*lines).substr(0, 3), "111");
}
