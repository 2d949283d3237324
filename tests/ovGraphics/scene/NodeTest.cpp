#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Node.h>
#include <random>
#include <support/RecordingLogger.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Quaternion;
using ovMaths::Vector;

namespace {

class NodeTest : public testing::Test {
protected:
    ovMemory::UniquePtr<Node> make(ovMemory::StringView name = "node") {
        auto node = Node::create(&_system);
        node->setName(name);
        return node;
    }
    static void expectNear(const Matrix& a, const Matrix& b, float tolerance) {
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                EXPECT_NEAR(a.m[row][column], b.m[row][column], tolerance) << row << ' ' << column;
    }

    System _system;
};

Matrix transformation(const Vector& position, const Vector& scale, const Quaternion& orientation) {
    Matrix matrix;
    matrix.setToTransformation(position, scale, orientation);
    return matrix;
}

Quaternion about(const Vector& axis, float angle) {
    Quaternion quaternion;
    quaternion.setFromAxisAngle(axis, angle);
    return quaternion;
}

constexpr float ROUNDING = 1e-5f; // some products of numbers near 1 to 10

} // namespace

TEST_F(NodeTest, aNewNodeIsAtTheOrigin) {
    const auto node = make();
    EXPECT_EQ(node->getWorldMatrix(), Matrix());
    EXPECT_EQ(node->getWorldMatrixInvTranspose(), Matrix());
    EXPECT_EQ(node->getScale(), Vector(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(node->getParent(), nullptr);
    EXPECT_EQ(node->getFirstChild(), nullptr);
    EXPECT_FALSE(node->isMirrored());
}

TEST_F(NodeTest, worldMatricesAreTheProductsOfLocalOnes) {
    const auto a = make();
    const auto b = make();
    const auto c = make();
    ASSERT_TRUE(b->setParent(a.get()) && c->setParent(b.get()));
    std::mt19937 random(1);
    std::uniform_real_distribution<float> number(-2.0f, 2.0f);
    for (int round = 0; round < 100; ++round) {
        Node* changed = std::array{a.get(), b.get(), c.get()}[static_cast<std::size_t>(round) % 3];
        changed->setPosition({number(random), number(random), number(random)});
        changed->setOrientation(
            about(Vector(number(random), 1.0f, 0.5f).getNormalizedVec3(), number(random)));
        changed->setScale({number(random), 1.0f, 0.5f});
        const auto local = [](const Node& node) {
            return transformation(node.getPosition(), node.getScale(), node.getOrientation());
        };
        const Matrix world = local(*a) * local(*b) * local(*c);
        expectNear(c->getWorldMatrix(), world, ROUNDING * 10.0f);
        EXPECT_EQ(c->isMirrored(), world.getDeterminantMat3() < 0.0f);
        const Matrix expected = world.getInverseMat4().getTranspose();
        float largest = 1.0f; // a thin scale makes the inverse large
        for (const auto& row : expected.m)
            for (const float value : row)
                largest = std::max(largest, std::abs(value));
        expectNear(c->getWorldMatrixInvTranspose(), expected, largest * ROUNDING * 10.0f);
    }
}

TEST_F(NodeTest, aLocalMatrixKeepsShearUntilAComponentIsSet) {
    const auto node = make();
    Matrix sheared;
    sheared.m[0][1] = 0.5f;
    sheared.m[2][3] = 3.0f;
    node->setLocalMatrix(sheared);
    EXPECT_EQ(node->getWorldMatrix(), sheared);
    EXPECT_EQ(node->getPosition(), Vector(0.0f, 0.0f, 3.0f));
    node->setPosition({1.0f, 0.0f});
    expectNear(node->getWorldMatrix(), transformation({1.0f, 0.0f}, node->getScale(), node->getOrientation()),
               0.0f);
}

TEST_F(NodeTest, childrenAreInTheOrderInWhichTheyCame) {
    const auto parent = make();
    auto a = make("a");
    auto b = make("b");
    auto c = make("c");
    const auto names = [&] {
        ovMemory::String text;
        for (const Node* child = parent->getFirstChild(); child; child = child->getNextSibling())
            text += child->getName();
        return text;
    };
    for (Node* child : {a.get(), b.get(), c.get()})
        ASSERT_TRUE(child->setParent(parent.get()));
    EXPECT_EQ(names(), "abc");
    ASSERT_TRUE(a->setParent(parent.get()));
    EXPECT_EQ(names(), "bca");
    b->setParent(nullptr);
    EXPECT_EQ(names(), "ca");
    a.reset();
    EXPECT_EQ(names(), "c");
    c.reset();
    EXPECT_EQ(names(), "");
}

TEST_F(NodeTest, aDestroyedParentLeavesItsChildrenWhereTheyAreToIt) {
    auto parent = make();
    const auto child = make();
    parent->setPosition({5.0f, 0.0f});
    child->setPosition({0.0f, 1.0f});
    ASSERT_TRUE(child->setParent(parent.get()));
    EXPECT_EQ(child->getWorldMatrix().getPositionComponent(), Vector(5.0f, 1.0f));
    parent.reset();
    EXPECT_EQ(child->getParent(), nullptr);
    EXPECT_EQ(child->getWorldMatrix().getPositionComponent(), Vector(0.0f, 1.0f));
}

TEST_F(NodeTest, refusesCyclesAndStrangers) {
    RecordingLogger logger;
    System system;
    Configuration configuration;
    configuration.logger = &logger;
    configuration.software = true;
    ASSERT_TRUE(system.initialize(configuration));
    const auto top = Node::create(&system);
    const auto middle = Node::create(&system);
    const auto bottom = Node::create(&system);
    top->setName("top");
    bottom->setName("bottom");
    ASSERT_TRUE(middle->setParent(top.get()) && bottom->setParent(middle.get()));
    EXPECT_FALSE(top->setParent(bottom.get()));
    EXPECT_FALSE(top->setParent(top.get()));
    const auto stranger = make("stranger");
    EXPECT_FALSE(top->setParent(stranger.get()));
    EXPECT_EQ(top->getParent(), nullptr);
    EXPECT_EQ(
        logger.getText(),
        "[Node] Could not give the parent 'bottom' to the node 'top': it lies below this node, and a node "
        "cannot hang below itself.\n"
        "[Node] Could not give the parent 'top' to the node 'top': it lies below this node, and a node "
        "cannot "
        "hang below itself.\n"
        "[Node] Could not give the parent 'stranger' to the node 'top': it belongs to another graphics "
        "system; "
        "create both on the same one.\n");
}

TEST_F(NodeTest, treesMayBeAsDeepAsMemoryAllows) {
    constexpr std::size_t DEPTH = 100000;
    ovMemory::Buffer<ovMemory::UniquePtr<Node>> chain(DEPTH);
    for (std::size_t i = DEPTH; i-- > 0;) { // from the leaf up: hanging a node looks at all that is above
        chain[i] = make();
        chain[i]->setPosition({1.0f, 0.0f});
        ASSERT_TRUE(i + 1 == DEPTH || chain[i + 1]->setParent(chain[i].get()));
    }
    EXPECT_EQ(chain.back()->getWorldMatrix().m[0][3], static_cast<float>(DEPTH));
    chain.front()->setPosition({2.0f, 0.0f});
    EXPECT_EQ(chain.back()->getWorldMatrix().m[0][3], static_cast<float>(DEPTH + 1));
}

TEST_F(NodeTest, aMatrixWithoutInverseStillTurnsNormals) {
    const auto node = make();
    node->setScale({1.0f, 1.0f, 0.0f}); // flattened on the plane z = 0
    const Vector normal = node->getWorldMatrixInvTranspose() * Vector(0.0f, 0.0f, 1.0f, 0.0f);
    EXPECT_EQ(normal, Vector(0.0f, 0.0f, 1.0f));
}

TEST_F(NodeTest, resetBringsTheNewNodeBack) {
    const auto parent = make();
    const auto node = make("kept");
    node->setParent(parent.get());
    node->setPosition({1.0f, 2.0f, 3.0f});
    node->setScale({2.0f, 2.0f, 2.0f});
    ovMaths::Quaternion turned;
    turned.setFromAxisAngle({1.0f, 2.0f, 3.0f}, 0.7f);
    node->setOrientation(turned);
    node->reset();
    EXPECT_EQ(node->getName(), "kept");
    EXPECT_EQ(node->getParent(), nullptr);
    EXPECT_EQ(node->getWorldMatrix(), Matrix());
}
