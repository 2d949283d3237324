#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>

using namespace ovGraphics;

TEST(CompositorTest, nodesInOrder) {
    System system;
    const auto compositor = Compositor::create(&system);
    EXPECT_EQ(compositor->getNodeCount(), 0u);
    EXPECT_EQ(compositor->getNode(0), nullptr);
    CompositorNode* first = compositor->appendNode();
    CompositorNode* second = compositor->appendNode();
    CompositorNode* third = compositor->appendNode();
    EXPECT_TRUE(first->getActive());
    first->setActive(false);
    EXPECT_FALSE(first->getActive());
    ASSERT_EQ(compositor->getNodeCount(), 3u);
    EXPECT_EQ(compositor->getNode(1), second);
    EXPECT_EQ(compositor->getNode(3), nullptr);
    EXPECT_TRUE(compositor->removeNode(second));
    EXPECT_FALSE(compositor->removeNode(second));
    EXPECT_FALSE(compositor->removeNode(nullptr));
    EXPECT_EQ(compositor->getNode(0), first);
    EXPECT_EQ(compositor->getNode(1), third);
    compositor->reset();
    EXPECT_EQ(compositor->getNodeCount(), 0u);
}

TEST(CompositorTest, blocksAreInsertedAndRemovedOneByOne) {
    System system;
    CompositorNode node;
    CompositorNode other;
    CompositorOperationsBlock* last = node.appendOperationsBlock();
    CompositorOperationsBlock* first = node.insertOperationsBlock(0);
    CompositorOperationsBlock* middle = node.insertOperationsBlock(1);
    CompositorOperationsBlock* end = node.insertOperationsBlock(1000); // beyond the end appends
    const std::array expected = {first, middle, last, end};
    ASSERT_EQ(node.getOperationsBlockCount(), expected.size());
    for (unsigned int i = 0; i < expected.size(); ++i)
        EXPECT_EQ(node.getOperationsBlock(i), expected[i]) << i;
    EXPECT_EQ(node.getOperationsBlock(4), nullptr);
    EXPECT_FALSE(other.removeOperationsBlock(middle));
    EXPECT_TRUE(node.removeOperationsBlock(middle));
    EXPECT_EQ(node.getOperationsBlock(1), last);
    EXPECT_EQ(node.getOperationsBlockCount(), 3u);
}

TEST(CompositorTest, passesAreInsertedAndRemovedOneByOne) {
    System system;
    CompositorOperationsBlock block;
    const CompositorPass* clear = block.appendClearPass();
    const CompositorPass* draw = block.appendPostProcessPass();
    const CompositorPass* inserted = block.insertPass(1, std::make_unique<MipGenerationPass>());
    const CompositorPass* end = block.insertPass(1000, std::make_unique<PostProcessPass>());
    EXPECT_EQ(block.insertPass(0, nullptr), nullptr);
    const std::array expected = {clear, inserted, draw, end};
    ASSERT_EQ(block.getPassCount(), expected.size());
    for (unsigned int i = 0; i < expected.size(); ++i)
        EXPECT_EQ(block.getPass(i), expected[i]) << i;
    EXPECT_EQ(block.getPass(4), nullptr);
    EXPECT_EQ(clear->getName(), "clear");
    EXPECT_EQ(inserted->getName(), "mip generation");
    EXPECT_EQ(draw->getName(), "post-process");
    EXPECT_TRUE(block.removePass(inserted));
    EXPECT_FALSE(block.removePass(inserted));
    EXPECT_FALSE(block.removePass(nullptr));
    EXPECT_EQ(block.getPass(1), draw);
}
