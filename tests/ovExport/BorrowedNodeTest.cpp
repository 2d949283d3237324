#include <gtest/gtest.h>
#include <ovExport/BorrowedNode.h>
#include <ovExport/JsonExporter.h>

using namespace ovExport;

TEST(BorrowedNodeTest, becomesNullWithItsTree) {
    auto tree = Node::create(NODE_NATURE::OBJECT);
    auto other = Node::create(NODE_NATURE::ARRAY);
    const BorrowedNode none;
    const BorrowedNode root = tree.get();
    const BorrowedNode leaf = tree->addMember("list")->addElement();
    const BorrowedNode stranger = other->addElement();
    leaf->setAsInt(7);
    EXPECT_FALSE(none);
    EXPECT_EQ(root.get(), tree.get());
    EXPECT_EQ((*leaf).getValueAsInt(), 7);
    tree.reset();
    EXPECT_FALSE(root);
    EXPECT_EQ(leaf.get(), nullptr);
    EXPECT_TRUE(stranger);
}

TEST(BorrowedNodeTest, outlivesItsPlaceInTheTreeButNotTheTree) {
    auto tree = Node::create(NODE_NATURE::OBJECT);
    const BorrowedNode leaf = tree->addMember("list")->addElement();
    leaf->setAsString("kept");
    tree->setAsNull(); // what it held stays in memory
    EXPECT_EQ(leaf->getValueAsStringView(), "kept");
    tree.reset();
    EXPECT_FALSE(leaf);
}

TEST(BorrowedNodeTest, guardsTreesThatWereRead) {
    ExporterLoadResult result = JsonExporter().importIntoTree("[1, [2, {\"three\": 3}]]");
    ASSERT_TRUE(result._tree);
    const BorrowedNode three = result._tree->getArrayElement(1)->getArrayElement(1)->getMemberValue("three");
    EXPECT_EQ(three->getValueAsInt(), 3);
    result._tree.reset();
    EXPECT_FALSE(three);
}
