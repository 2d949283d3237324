// Draw lists beside a list that is made from scratch after every step of a long random story.
#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/device/CountingDevice.h>
#include <ovGraphics/scene/DrawList.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <random>
#include <support/RecordingLogger.h>
#include <tuple>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

constexpr int STEPS = 10000;
constexpr float HALF_VIEW = 10.25f; // no box of whole coordinates and half sides ends near such a border
constexpr float NEAR_PLANE = 1.25f;
constexpr float FAR_PLANE = 50.25f;

/// What is drawn once.
struct Drawn {
    const Shader* shader;
    const Mesh* mesh;
    bool doubleSided;
    bool mirrored;
    Matrix world;
    bool isInView = true;
    float depth = 0.0f;

    bool equals(const Drawn& other) const {
        return shader == other.shader && mesh == other.mesh && doubleSided == other.doubleSided &&
               mirrored == other.mirrored && world == other.world;
    }
    auto state() const {
        return std::make_tuple(shader->getProgram()->getId(), shader->getId(), mesh->getId(), doubleSided,
                               mirrored);
    }
};

/// The world matrix of a node, step by step from the root. Coordinates are small whole numbers and scales
/// powers of two, so that every order of computing gives the same.
Matrix worldOf(const Node* node) {
    Matrix world;
    for (; node; node = node->getParent()) {
        const Matrix& local = node->getLocalMatrix();
        Matrix product;
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column) {
                product.m[row][column] = 0.0f;
                for (int k = 0; k < 4; ++k)
                    product.m[row][column] += local.m[row][k] * world.m[k][column];
            }
        world = product;
    }
    return world;
}

class DrawListRandomTest : public testing::Test {
protected:
    void SetUp() override {
        auto device = std::make_unique<device::CountingDevice>();
        _device = device.get();
        Configuration configuration;
        configuration.logger = &_logger;
        ASSERT_TRUE(_system.initialize(configuration, std::move(device)));
        for (const float shift : {0.0f, 1.0f, 2.0f}) {
            const Vector corners[] = {
                {shift - 0.5f, -0.5f, -0.5f}, {shift - 0.5f, 0.5f, 0.5f}, {shift + 0.5f, 0.5f, 0.5f}};
            _meshes.push_back(makeMesh(_system, corners));
        }
        // One that costs more than a draw call, so that nothing out of view is drawn along.
        _meshes.push_back(makeMesh(_system, ovMemory::Buffer<Vector>(2049, Vector(0.5f, 0.5f, 0.5f))));
        for (const bool both : {true, false, true, false}) {
            auto& shader = _shaders.emplace_back(std::make_unique<TestShader>(
                _system, _shaders.size() < 2 ? SCENE_PIXEL_TEXT : "void main() {}", SCENE_VERTEX_TEXT));
            shader->shader->addInstanceMemorySlot()->setAsWorldMatrix();
            if (both)
                shader->shader->addInstanceMemorySlot()->setAsWorldMatrixInvTranspose();
            ASSERT_TRUE(shader->shader->load()) << _logger.getText();
        }
        for (int i = 0; i < 24; ++i)
            _nodes.push_back(Node::create(&_system));
        for (int i = 0; i < 60; ++i)
            addEntity(*_queue);
        _camera->setOrthographic(2.0f * HALF_VIEW, 2.0f * HALF_VIEW, NEAR_PLANE, FAR_PLANE);
        _camera->setPosition({0.0f, 0.0f, -20.0f});
        _canvas = std::make_unique<Canvas>(_system);
    }

    int below(int count) { return static_cast<int>(_random() % static_cast<unsigned int>(count)); }
    float coordinate(int range) { return static_cast<float>(below(2 * range + 1) - range); }
    Node* anyNode() { return below(12) == 0 ? nullptr : _nodes[static_cast<std::size_t>(below(24))].get(); }
    Mesh* anyMesh() { return below(12) == 0 ? nullptr : _meshes[static_cast<std::size_t>(below(4))].get(); }
    TestShader& anyTestShader() { return *_shaders[static_cast<std::size_t>(below(4))]; }
    Shader* anyShader() { return below(12) == 0 ? nullptr : anyTestShader().shader.get(); }
    Entity* anyEntity() {
        const unsigned int count = _queue->getEntityCount();
        return count == 0 ? addEntity(*_queue)
                          : _queue->getEntity(static_cast<unsigned int>(_random()) % count);
    }
    Entity* addEntity(RenderQueue& queue) {
        Entity* entity = queue.addEntity(anyMesh(), anyShader(), anyNode());
        entity->setShader(anyShader(), 1);
        return entity;
    }

    void changeEntity() {
        switch (below(9)) {
        case 0:
            return anyEntity()->setVisible(below(3) != 0);
        case 1:
            return anyEntity()->setMesh(anyMesh());
        case 2:
            return anyEntity()->setShader(anyShader(), static_cast<unsigned int>(below(2)));
        case 3:
            return anyEntity()->setNode(anyNode());
        case 4:
            return anyEntity()->setDoubleSided(below(2) == 0);
        case 5:
            addEntity(*_queue);
            return;
        case 6:
            EXPECT_TRUE(_queue->eraseEntity(anyEntity()));
            return;
        case 7:
            if (below(200) == 0)
                _queue->clearQueue();
            return;
        default:
            addEntity(*_otherQueue);
            _otherQueue->getEntity(0)->setVisible(below(2) == 0);
        }
    }
    void changeNode() {
        auto& node = _nodes[static_cast<std::size_t>(below(24))];
        switch (below(5)) {
        case 0:
            return node->setScale({below(3) == 0 ? -1.0f : 1.0f, below(2) == 0 ? 2.0f : 1.0f, 1.0f});
        case 1: {
            Node* parent = anyNode();
            for (const Node* above = parent; above; above = above->getParent())
                parent = above == node.get() ? nullptr : parent;
            EXPECT_TRUE(node->setParent(parent));
            return;
        }
        case 2:
            if (below(10) == 0)
                node = Node::create(&_system);
            return;
        default:
            node->setPosition({coordinate(12), coordinate(12), coordinate(12)});
        }
    }
    void changeResource() {
        Mesh& mesh = *_meshes[static_cast<std::size_t>(below(3))];
        TestShader& shader = anyTestShader();
        switch (below(5)) {
        case 0:
            return mesh.unload();
        case 1:
            EXPECT_TRUE(mesh.load());
            return;
        case 2:
            shader->setProgram(anyTestShader().program.get());
            shader->unload();
            EXPECT_TRUE(shader->load());
            return;
        case 3: { // other vertices: another box
            const float shift = coordinate(2);
            mesh.fillPackedFromUnpacked(ovMemory::Buffer<Vector>{{shift - 0.5f, -0.5f, -0.5f},
                                                                 {},
                                                                 {shift - 0.5f, 0.5f, 0.5f},
                                                                 {},
                                                                 {shift + 0.5f, 0.5f, 0.5f},
                                                                 {}});
            EXPECT_TRUE(mesh.load());
            return;
        }
        default: {
            auto& slot = _meshes[static_cast<std::size_t>(below(3))];
            const Vector corners[] = {{-0.5f, -0.5f, -0.5f}, {-0.5f, 0.5f, 0.5f}, {0.5f, 0.5f, 0.5f}};
            slot = makeMesh(_system, corners);
        }
        }
    }
    void changeView() {
        switch (below(4)) {
        case 0:
            _culling = below(3) != 0;
            return;
        case 1:
            _hasCamera = below(8) != 0;
            return;
        default:
            _camera->setPosition({coordinate(10), coordinate(10), coordinate(10) - 20.0f});
        }
    }

    /// Every entity that should be drawn, in the order of addition.
    ovMemory::Buffer<Drawn> entitiesToDraw(unsigned int variant) const {
        ovMemory::Buffer<Drawn> drawn;
        for (unsigned int i = 0; i < _queue->getEntityCount(); ++i) {
            const Entity& entity = *_queue->getEntity(i);
            const Shader* shader = entity.getShader(variant);
            const Mesh* mesh = entity.getMesh();
            if (!entity.getVisible() || !shader || !mesh || mesh->isUnloaded())
                continue;
            const Matrix world = worldOf(entity.getNode());
            const bool mirrored = world.m[0][0] * world.m[1][1] * world.m[2][2] < 0.0f; // none rotates
            Drawn& own = drawn.emplace_back(Drawn{shader, mesh, entity.getDoubleSided(), mirrored, world});
            own.isInView = isInView(*mesh, world, own.depth);
        }
        return drawn;
    }
    bool isInView(const Mesh& mesh, const Matrix& world, float& depth) const {
        const Vector eye = _camera->getPosition();
        const float lowest[] = {eye.x - HALF_VIEW, eye.y - HALF_VIEW, eye.z + NEAR_PLANE};
        const float highest[] = {eye.x + HALF_VIEW, eye.y + HALF_VIEW, eye.z + FAR_PLANE};
        const Vector low = mesh.getBoundingBox().getMinimum();
        const Vector high = mesh.getBoundingBox().getMaximum();
        const float lows[] = {low.x, low.y, low.z};
        const float highs[] = {high.x, high.y, high.z};
        bool inside = true;
        for (int axis = 0; axis < 3; ++axis) { // none rotates
            const float a = world.m[axis][axis] * lows[axis] + world.m[axis][3];
            const float b = world.m[axis][axis] * highs[axis] + world.m[axis][3];
            inside = inside && std::max(a, b) > lowest[axis] && std::min(a, b) < highest[axis];
            depth = 0.5f * (a + b); // of the last axis
        }
        if (!_hasCamera)
            depth = 0.0f;
        return inside || !_culling || !_hasCamera;
    }

    ovMemory::Buffer<Drawn> drawnBy(const DrawList& list) const {
        ovMemory::Buffer<Drawn> drawn;
        for (const DrawList::Batch& batch : list.getBatches()) {
            EXPECT_GT(batch.draw.instanceCount, 0u);
            EXPECT_NE(batch.geometry, nullptr);
            const auto bytes = device::CountingDevice::getBytes(*list.getInstances());
            for (unsigned int i = 0; i < batch.draw.instanceCount; ++i) {
                Drawn& own = drawn.emplace_back(
                    Drawn{batch.shader, batch.mesh, batch.doubleSided, batch.mirrored, {}});
                std::memcpy(own.world.m,
                            &bytes[(batch.draw.firstInstance + i) * std::size_t{batch.draw.instanceStride}],
                            sizeof(own.world.m));
                if (batch.draw.instanceStride < 2 * sizeof(own.world.m))
                    continue;
                Matrix invTranspose;
                std::memcpy(invTranspose.m,
                            &bytes[(batch.draw.firstInstance + i) * std::size_t{batch.draw.instanceStride} +
                                   sizeof(own.world.m)],
                            sizeof(invTranspose.m));
                EXPECT_EQ(invTranspose, own.world.getInverseMat4().getTranspose());
            }
        }
        return drawn;
    }

    /// Everything in view must be drawn in order; between it may be what is out of view.
    static bool isFaithful(const ovMemory::Buffer<Drawn>& wanted, const ovMemory::Buffer<Drawn>& drawn) {
        std::size_t next = 0;
        for (const Drawn& own : drawn) {
            while (next < wanted.size() && !wanted[next].equals(own)) {
                if (wanted[next++].isInView)
                    return false;
            }
            if (next++ == wanted.size())
                return false;
        }
        return std::none_of(wanted.begin() + static_cast<std::ptrdiff_t>(std::min(next, wanted.size())),
                            wanted.end(), [](const Drawn& own) { return own.isInView; });
    }

    void compareByState() {
        const DrawListSettings settings{.variant = 0, .culling = _culling};
        ASSERT_TRUE(
            _byState.update(_system, *_queue, _hasCamera ? _camera.get() : nullptr, settings, _error));
        auto wanted = entitiesToDraw(0);
        std::stable_sort(wanted.begin(), wanted.end(),
                         [](const Drawn& a, const Drawn& b) { return a.state() < b.state(); });
        ASSERT_TRUE(isFaithful(wanted, drawnBy(_byState)));
    }
    void compareByDepth() {
        const DrawListSettings settings{
            .variant = 1, .order = SCENE_ORDER::BACK_TO_FRONT, .culling = _culling};
        ASSERT_TRUE(
            _byDepth.update(_system, *_queue, _hasCamera ? _camera.get() : nullptr, settings, _error));
        auto wanted = entitiesToDraw(1);
        std::erase_if(wanted, [](const Drawn& own) { return !own.isInView; });
        std::stable_sort(wanted.begin(), wanted.end(),
                         [](const Drawn& a, const Drawn& b) { return a.depth > b.depth; });
        const auto drawn = drawnBy(_byDepth);
        ASSERT_EQ(drawn.size(), wanted.size());
        ASSERT_TRUE(isFaithful(wanted, drawn));
    }

    RecordingLogger _logger;
    System _system;
    device::CountingDevice* _device = nullptr;
    ovMemory::UniquePtr<RenderQueue> _queue = RenderQueue::create(&_system);
    ovMemory::UniquePtr<RenderQueue> _otherQueue = RenderQueue::create(&_system);
    ovMemory::UniquePtr<Camera> _camera = Camera::create(&_system);
    ovMemory::Buffer<ovMemory::UniquePtr<Mesh>> _meshes;
    ovMemory::Buffer<ovMemory::UniquePtr<TestShader>> _shaders;
    ovMemory::Buffer<ovMemory::UniquePtr<Node>> _nodes;
    ovMemory::UniquePtr<Canvas> _canvas;
    DrawList _byState;
    DrawList _byDepth;
    std::mt19937 _random{20261122};
    bool _culling = true;
    bool _hasCamera = true;
    ovMemory::String _error;
};

} // namespace

TEST_F(DrawListRandomTest, isWhatAListFromScratchWouldBe) {
    for (int step = 0; step < STEPS; ++step) {
        SCOPED_TRACE(step);
        for (int change = below(4); change >= 0; --change) {
            const int kind = below(20);
            if (kind < 9)
                changeEntity();
            else if (kind < 17)
                changeNode();
            else if (kind < 19)
                changeView();
            else if (below(4) == 0)
                changeResource();
        }
        ASSERT_TRUE(_canvas->frame());
        compareByState();
        if (step % 3 == 0) // the other list falls behind and catches up
            compareByDepth();
        ASSERT_FALSE(HasFatalFailure() || HasNonfatalFailure());
    }
    _byState.unload();
    _byDepth.unload();
    EXPECT_EQ(_logger.getText(), "");
}
