#include <gtest/gtest.h>
#include <ovGraphics/gltf/detail/GltfReport.h>
#include <string>

using namespace ovGraphics::detail;

TEST(GltfReportTest, keepsTheFirstErrorOnly) {
    GltfReport report(100);
    EXPECT_EQ(report.getError(), "");
    EXPECT_FALSE(report.fail("one"));
    EXPECT_FALSE(report.fail("two"));
    EXPECT_EQ(report.getError(), "one");
}

TEST(GltfReportTest, repeatsNoWarningAndCountsWhatItDoesNotKeep) {
    GltfReport report(0);
    for (std::size_t i = 0; i < GltfReport::MAX_WARNINGS + 7; ++i) {
        report.warn("warning " + std::to_string(i));
        report.warn("warning 0");
    }
    const ovMemory::Buffer<ovMemory::String> warnings = report.takeWarnings();
    ASSERT_EQ(warnings.size(), GltfReport::MAX_WARNINGS + 1);
    EXPECT_EQ(warnings.front(), "warning 0");
    EXPECT_EQ(warnings.back(), "7 more warnings are not shown");
}

TEST(GltfReportTest, countsBytesUpToTheLimit) {
    GltfReport report(100);
    EXPECT_TRUE(report.charge(10, 4, "a"));
    EXPECT_TRUE(report.charge(60, 1, "b"));
    EXPECT_TRUE(report.charge(0, 1000, "nothing"));
    EXPECT_FALSE(report.charge(1, 1, "c"));
    EXPECT_EQ(report.getError(),
              "c would take 1 x 1 bytes, which is more than what is left of the 100 bytes that "
              "the file may take; raise maxBytes if it is trusted");
    GltfReport other(100);
    EXPECT_FALSE(other.charge(~std::size_t(0), 16, "far too much"));
}

TEST(GltfReportTest, makesNamesFitForOneLine) {
    struct Case {
        std::string name;
        std::string expected;
    };
    const Case cases[] = {
        {"", "mesh 3"},
        {"Wheel", "mesh 3 \"Wheel\""},
        {"a\nb\tc\x7f", "mesh 3 \"a?b?c?\""},
        {std::string("a\0b", 3), "mesh 3 \"a?b\""},
        {"R\xc3\xa4"
         "der",
         "mesh 3 \"R\xc3\xa4"
         "der\""},
        {std::string(80, 'x'), "mesh 3 \"" + std::string(80, 'x') + "\""},
        {std::string(81, 'x'), "mesh 3 \"" + std::string(80, 'x') + "...\""},
        // Not cut within a character.
        {std::string(79, 'x') + "\xc3\xa4", "mesh 3 \"" + std::string(79, 'x') + "...\""},
    };
    for (const Case& row : cases)
        EXPECT_EQ(describeGltf("mesh", 3, row.name), row.expected);
}
