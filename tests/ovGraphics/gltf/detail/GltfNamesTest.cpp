#include <gtest/gtest.h>
#include <ovGraphics/gltf/detail/GltfNames.h>
#include <set>
#include <string>

using ovGraphics::detail::GltfNames;

TEST(GltfNamesTest, makesEachNameUnique) {
    struct Case {
        const char* name;
        const char* expected;
    };
    const Case cases[] = {
        {"Wheel", "Wheel"},
        {"Wheel", "Wheel (2)"},
        {"", "node 2"},
        {"Wheel", "Wheel (3)"},
        {"node 2", "node 2 (2)"},
        {"", "node 5"},
        {"Door (2)", "Door (2)"},
        {"Door", "Door"},
        {"Door", "Door (3)"},
        {"wheel", "wheel"},
        {"Wheel (2)", "Wheel (2) (2)"},
    };
    GltfNames names("node");
    std::size_t index = 0;
    for (const Case& row : cases)
        EXPECT_EQ(names.makeUnique(row.name, index++), row.expected);
}

TEST(GltfNamesTest, isNoSlowerForManyEqualNames) {
    GltfNames names("node");
    std::set<std::string> seen;
    for (std::size_t i = 0; i < 100000; ++i)
        seen.insert(names.makeUnique("same", i));
    EXPECT_EQ(seen.size(), 100000u);
}
