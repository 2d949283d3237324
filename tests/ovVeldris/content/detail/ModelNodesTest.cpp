#include <ovVeldris/content/detail/ModelNodes.h>

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Node.h>
#include <random>

using namespace ovVeldris;
using ovGraphics::GltfScene;
using ovGraphics::Node;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

using DoubleMatrix = std::array<std::array<double, 4>, 4>;

DoubleMatrix toDouble(const Matrix& matrix) {
    DoubleMatrix result;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            result[row][column] = matrix.m[row][column];
    return result;
}

DoubleMatrix operator*(const DoubleMatrix& a, const DoubleMatrix& b) {
    DoubleMatrix product{};
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            for (int i = 0; i < 4; ++i)
                product[row][column] += a[row][i] * b[i][column];
    return product;
}

/// Floats that are multiplied from the root down lose half a unit of the last place a level, of the largest
/// element.
void expectNear(const Matrix& matrix, const DoubleMatrix& expected, const ovMemory::String& name) {
    double largest = 1.0;
    for (const auto& row : expected)
        for (const double element : row)
            largest = std::max(largest, std::abs(element));
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(matrix.m[row][column], expected[row][column], 1e-5 * largest) << name;
}

class ModelNodesTest : public testing::Test {
protected:
    /// Adds a node below another, or at the top for -1.
    ovGraphics::GltfNode& add(int parent) {
        const auto index = static_cast<unsigned int>(scene.nodes.size());
        ovGraphics::GltfNode& node = scene.nodes.emplace_back();
        node.name = "node " + std::to_string(index);
        node.parent = parent;
        (parent < 0 ? scene.roots : scene.nodes[static_cast<std::size_t>(parent)].children).push_back(index);
        return scene.nodes[index];
    }

    void place(ovGraphics::GltfNode& node) {
        const auto number = [this](float from, float to) {
            return std::uniform_real_distribution(from, to)(random);
        };
        node.position = {number(-2.0f, 2.0f), number(-2.0f, 2.0f), number(-2.0f, 2.0f)};
        node.scale = {number(0.5f, 1.5f), number(-1.5f, -0.5f), number(0.5f, 1.5f)};
        node.orientation =
            ovMaths::Quaternion(number(-1.0f, 1.0f), number(-1.0f, 1.0f), number(-1.0f, 1.0f), 0.5f);
        node.orientation.normalize();
        node.local.setToTransformation(node.position, node.scale, node.orientation);
        if (random() % 4 == 0)
            node.local.m[0][1] += 0.5f; // sheared: position, scale and orientation do not say it
    }

    /// The product of the local matrices from a node up.
    DoubleMatrix worldOf(const DoubleMatrix& root, int index) const {
        DoubleMatrix world = toDouble(Matrix());
        for (; index >= 0; index = scene.nodes[static_cast<std::size_t>(index)].parent)
            world = toDouble(scene.nodes[static_cast<std::size_t>(index)].local) * world;
        return root * world;
    }

    void expectWorlds(const detail::ModelNodes& nodes, const DoubleMatrix& root) const {
        for (std::size_t i = 0; i < scene.nodes.size(); ++i)
            expectNear(nodes.ofFile[i]->getWorldMatrix(), worldOf(root, static_cast<int>(i)),
                       scene.nodes[i].name);
    }

    ovGraphics::System graphics;
    GltfScene scene;
    std::mt19937 random{1};
};

} // namespace

TEST_F(ModelNodesTest, PlacesAreTheProductsOfThoseAbove) {
    for (int i = 0; i < 300; ++i)
        place(add(i < 3 ? -1 : static_cast<int>(random() % static_cast<unsigned int>(i))));
    const detail::ModelNodes nodes = detail::makeNodes(graphics, scene);
    expectWorlds(nodes, toDouble(Matrix()));

    // Moving the root moves all.
    nodes.root->setPosition({10.0f, -20.0f, 5.0f});
    nodes.root->setScale({2.0f, 2.0f, 2.0f});
    expectWorlds(nodes, {{{2, 0, 0, 10}, {0, 2, 0, -20}, {0, 0, 2, 5}, {0, 0, 0, 1}}});
}

TEST_F(ModelNodesTest, KeepsNamesParentsAndTheOrderOfChildren) {
    add(-1);
    add(0);
    add(0);
    add(0);
    add(-1);
    add(2);
    const detail::ModelNodes nodes = detail::makeNodes(graphics, scene);
    EXPECT_EQ(nodes.root->getName(), "model root");
    EXPECT_EQ(nodes.root->getParent(), nullptr);
    for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
        const int parent = scene.nodes[i].parent;
        EXPECT_EQ(nodes.ofFile[i]->getName(), scene.nodes[i].name);
        EXPECT_EQ(nodes.ofFile[i]->getParent(),
                  parent < 0 ? nodes.root.get() : nodes.ofFile[static_cast<std::size_t>(parent)].get());
        EXPECT_EQ(nodes.ofFile[i]->getScale(), Vector(1.0f, 1.0f, 1.0f));
    }
    const Node* child = nodes.ofFile[0]->getFirstChild();
    for (const std::size_t expected : {1u, 2u, 3u}) {
        EXPECT_EQ(child, nodes.ofFile[expected].get());
        child = child->getNextSibling();
    }
    EXPECT_EQ(child, nullptr);
    EXPECT_EQ(nodes.root->getFirstChild(), nodes.ofFile[0].get());
    EXPECT_EQ(nodes.ofFile[0]->getNextSibling(), nodes.ofFile[4].get());
}

TEST_F(ModelNodesTest, KeepsThePartsOfAPlaceExactly) {
    ovGraphics::GltfNode& node = add(-1);
    node.position = {0.1f, 0.2f, 0.3f};
    node.scale = {-0.7f, 0.9f, -1.3f};
    node.orientation = ovMaths::Quaternion(0.1f, 0.2f, 0.3f, 0.4f);
    node.orientation.normalize();
    node.local.setToTransformation(node.position, node.scale, node.orientation);
    const detail::ModelNodes nodes = detail::makeNodes(graphics, scene);
    EXPECT_EQ(nodes.ofFile[0]->getPosition(), node.position);
    EXPECT_EQ(nodes.ofFile[0]->getScale(), node.scale);
    EXPECT_EQ(nodes.ofFile[0]->getOrientation(), node.orientation);
    EXPECT_EQ(nodes.ofFile[0]->getLocalMatrix(), node.local);
}

TEST_F(ModelNodesTest, LeavesOutWhatTheSceneDoesNotReach) {
    add(-1);
    add(0);
    add(-1);
    scene.roots = {0};
    const detail::ModelNodes nodes = detail::makeNodes(graphics, scene);
    EXPECT_NE(nodes.ofFile[0], nullptr);
    EXPECT_NE(nodes.ofFile[1], nullptr);
    EXPECT_EQ(nodes.ofFile[2], nullptr);
    EXPECT_EQ(detail::makeNodes(graphics, {}).root->getFirstChild(), nullptr);
}

// As deep as the reader's own test: neither recursion nor the square of the depth would get through.
TEST_F(ModelNodesTest, TheDeepestTreesHang) {
    constexpr int DEPTH = 100000;
    for (int i = 0; i < DEPTH; ++i)
        add(i - 1).local.setPositionComponent(scene.nodes.back().position = {0.0f, 1.0f, 0.0f});
    const detail::ModelNodes nodes = detail::makeNodes(graphics, scene);
    EXPECT_EQ(nodes.ofFile.back()->getWorldMatrix().getPositionComponent(), Vector(0.0f, DEPTH, 0.0f));
    nodes.root->setPosition({1.0f, 0.0f, 0.0f});
    EXPECT_EQ(nodes.ofFile.back()->getWorldMatrix().getPositionComponent(), Vector(1.0f, DEPTH, 0.0f));
}
