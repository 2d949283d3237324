// What trees take from the heap.
#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <support/heap/Heap.h>

namespace {

using namespace ovExport;

ovMemory::String makeEntries(unsigned int count) {
    ovMemory::String text = "[";
    for (unsigned int i = 0; i < count; ++i)
        text += ovMemory::String(i > 0 ? "," : "") + R"({"name":"material )" + std::to_string(i) +
                R"(","type":"PBS","value":0.5,"list":[1,2,3]})";
    return text + "]";
}

TEST(NodeArenaTest, readingTakesFewAllocations) {
    const ovMemory::String text = makeEntries(10000);
    const std::size_t before = getAllocationCount();
    const auto result = JsonExporter().importIntoTree(text);
    const std::size_t used = getAllocationCount() - before;
    ASSERT_TRUE(result);
    // 80,001 nodes of 40 bytes in chunks of 1 MiB, the chunks and the stack that grow to there, the text.
    EXPECT_LE(used, 60u);
}

TEST(NodeArenaTest, aSmallTreeTakesFewAllocations) {
    const std::size_t before = getAllocationCount();
    {
        const auto root = Node::create();
        for (const char* name : {"name", "type", "albedoColor", "alphaValue"})
            root->addMember(name)->setAsString("value");
    }
    // The root, the arena and its first chunk.
    EXPECT_EQ(getAllocationCount() - before, 3u);
}

TEST(NodeArenaTest, settingValuesAgainTakesNothing) {
    const auto root = Node::create();
    Node* const text = root->addMember("text");
    Node* const number = root->addMember("number");
    text->setAsString("0123456789");
    const std::size_t before = getAllocationCount();
    for (int i = 0; i < 10000; ++i) {
        text->setAsString(i % 2 == 0 ? "abcdefghij" : "klmnopqrst");
        number->setAsDouble(i);
    }
    EXPECT_EQ(getAllocationCount() - before, 0u);
    EXPECT_EQ(text->getValueAsStringView(), "klmnopqrst");
}

TEST(NodeArenaTest, treesTellTheirBytes) {
    const auto root = Node::create();
    EXPECT_EQ(root->getTreeBytes(), 0u);
    const std::size_t chunk = 1024 + sizeof(void*);
    root->addElement();
    EXPECT_EQ(root->getTreeBytes(), chunk);
    // A long text has a chunk of its own.
    root->addElement()->setAsString(ovMemory::String(1 << 20, 'x'));
    EXPECT_EQ(root->getTreeBytes(),
              chunk + (1 << 20) + 2 * sizeof(void*)); // the chunk's head and the NUL, aligned
}

TEST(NodeArenaTest, nodesAreAligned) {
    const auto root = Node::create();
    for (const char* name : {"a", "bc", "def", "ghij", "klmno", "pqrstu"}) {
        Node* const child = root->addMember(name)->addElement();
        child->setAsString(name);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(child) % alignof(Node), 0u);
    }
}

TEST(NodeArenaTest, lackOfMemoryIsAnErrorWithoutALeak) {
    const ovMemory::String text = makeEntries(200);
    std::size_t failures = 0;
    for (std::size_t others = 0;; ++others) {
        failAllocationAfter(others);
        const auto result = JsonExporter().importIntoTree(text);
        const bool wasEnough = stopFailingAllocations();
        ASSERT_EQ(static_cast<bool>(result), wasEnough) << others;
        if (wasEnough)
            break;
        EXPECT_EQ(result._error._errorDesc, "Out of memory");
        ++failures;
    }
    EXPECT_GT(failures, 5u);

    const auto tree = JsonExporter().importIntoTree(text);
    failAllocationAfter(2);
    EXPECT_EQ(JsonExporter().exportTreeIntoString(tree._tree.get()), "");
    EXPECT_FALSE(stopFailingAllocations());
}

} // namespace
