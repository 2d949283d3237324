#include <ovVeldris/complexEffects/NodeBlocks.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>

using ovVeldris::NodeBlocks;

namespace {

class NodeBlocksTest : public testing::Test {
protected:
    ovGraphics::System system;
    ovGraphics::Shader shader{&system};
    ovGraphics::Viewport viewport{&system};
    ovGraphics::Texture first{&system};
    ovGraphics::Texture second{&system};
    ovGraphics::CompositorNode node;
};

} // namespace

TEST_F(NodeBlocksTest, AppendsOnePassForTheTargets) {
    NodeBlocks blocks;
    blocks.append(node, shader, viewport, {&first, &second});
    ASSERT_EQ(node.getOperationsBlockCount(), 1u);
    const ovGraphics::CompositorOperationsBlock& block = *node.getOperationsBlock(0);
    EXPECT_EQ(block.getTarget(0), &first);
    EXPECT_EQ(block.getTarget(1), &second);
    EXPECT_EQ(block.getTarget(2), nullptr);
    EXPECT_EQ(block.getViewport(), &viewport);
    ASSERT_EQ(block.getPassCount(), 1u);
    EXPECT_EQ(dynamic_cast<ovGraphics::PostProcessPass&>(*block.getPass(0)).getShader(), &shader);
}

TEST_F(NodeBlocksTest, RemovesItsOwn) {
    const auto* others = node.appendOperationsBlock();
    NodeBlocks blocks;
    blocks.append(node, shader, viewport, {&first});
    blocks.append(node, shader, viewport, {&second});
    node.removeOperationsBlock(node.getOperationsBlock(1));
    blocks.remove();
    ASSERT_EQ(node.getOperationsBlockCount(), 1u);
    EXPECT_EQ(node.getOperationsBlock(0), others);
    blocks.remove();
    EXPECT_EQ(node.getOperationsBlockCount(), 1u);
}

TEST_F(NodeBlocksTest, ForgetsANodeForAnother) {
    ovGraphics::CompositorNode other;
    {
        NodeBlocks blocks;
        blocks.append(node, shader, viewport, {&first});
        blocks.append(other, shader, viewport, {&second});
        EXPECT_EQ(node.getOperationsBlockCount(), 0u);
        EXPECT_EQ(other.getOperationsBlockCount(), 1u);
    }
    EXPECT_EQ(other.getOperationsBlockCount(), 0u);
}

TEST_F(NodeBlocksTest, OutlivesTheNode) {
    NodeBlocks blocks;
    {
        ovGraphics::CompositorNode shortLived;
        blocks.append(shortLived, shader, viewport, {&first});
    }
    blocks.remove();
}
