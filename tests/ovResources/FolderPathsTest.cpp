#include <ovResources/FolderPaths.h>

#include <gtest/gtest.h>

using namespace ovResources;
using namespace std::string_view_literals;

TEST(FolderPathsTest, staysInsideTheFolder) {
    const std::pair<std::string_view, std::string_view> CASES[] = {
        {"a.png", "/p/a.png"},
        {"sub/a.png", "/p/sub/a.png"},
        {"./a.png", "/p/a.png"},
        {"b/../a.png", "/p/a.png"},
        {"..a/b", "/p/..a/b"},
        {"", ""},
        {".", ""},
        {"..", ""},
        {"../a.png", ""},
        {"b/../../a.png", ""},
        {"/etc/passwd", ""},
        {"/p/a.png", ""},
        {"sub/", ""},
        {"a\0.png"sv, ""},
    };
    for (const auto& [path, expected] : CASES)
        EXPECT_EQ(pathInside("/p", path), expected) << path;
}

TEST(FolderPathsTest, findsTheWayBack) {
    EXPECT_EQ(pathFromFolder("/p", "/p/a.png"), "a.png");
    EXPECT_EQ(pathFromFolder("/p/", "/p/./sub//a.png"), "sub/a.png");
    EXPECT_EQ(pathFromFolder("/", "/a.png"), "a.png");
    EXPECT_EQ(pathFromFolder("/p", "/q/a.png"), "");
    EXPECT_EQ(pathFromFolder("/p/q", "/p/a.png"), "");
    EXPECT_EQ(pathFromFolder("/p", "/p"), "");
    EXPECT_EQ(pathFromFolder("/p", "/pq/a.png"), "");
}
