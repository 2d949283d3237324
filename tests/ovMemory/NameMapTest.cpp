#include <ovMemory/NameMap.h>

#include <gtest/gtest.h>
#include <set>

using namespace ovMemory;

TEST(NameMapTest, findsByNameAndByIndexWhatIsThere) {
    NameMap<UniquePtr<int>> map;
    EXPECT_EQ(getByIndex(map, 0), nullptr);
    EXPECT_EQ(find(map, ""), nullptr);
    for (const char* const name : {"", "a", "b", "\xC3\xA9"})
        map.emplace(name, std::make_unique<int>(static_cast<int>(map.size())));
    std::set<int> values;
    for (unsigned int i = 0; i < 4; ++i) {
        ASSERT_NE(getByIndex(map, i), nullptr);
        values.insert(*getByIndex(map, i));
    }
    EXPECT_EQ(values, (std::set<int>{0, 1, 2, 3}));
    for (const unsigned int beyond : {4u, 5u, 0xffffffffu})
        EXPECT_EQ(getByIndex(map, beyond), nullptr);
    EXPECT_EQ(*find(map, "b"), 2);
    EXPECT_EQ(find(map, "B"), nullptr);
    EXPECT_EQ(find(map, StringView("b\0", 2)), nullptr) << "a zero byte is a character as any other";
}

// Files list what managers hold, and must not change because of what was put in and taken out before.
TEST(NameMapTest, isInTheOrderOfNamesWhateverWasPutInBefore) {
    NameMap<UniquePtr<int>> map;
    for (const char* const name : {"m", "b", "\xC3\xA9", "a", "B"})
        map.emplace(name, std::make_unique<int>(0));
    map.erase(map.find("m"));
    Buffer<String> names;
    for (const auto& entry : map)
        names.push_back(entry.first);
    EXPECT_EQ(names, (Buffer<String>{"B", "a", "b", "\xC3\xA9"}));
}

// The values of the hash's authors; names of files and of programs depend on them.
TEST(NameMapTest, hashesAsTheReferenceDoes) {
    EXPECT_EQ(hashFnv1a64(""), 0xcbf29ce484222325u);
    EXPECT_EQ(hashFnv1a64("a"), 0xaf63dc4c8601ec8cu);
    EXPECT_EQ(hashFnv1a64("foobar"), 0x85944171f73967e8u);
}
