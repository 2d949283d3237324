#include <gtest/gtest.h>
#include <ovExport/TextPosition.h>

namespace {

using namespace ovExport;

TEST(TextPositionTest, linesAndColumnsCountFromOne) {
    struct Case {
        ovMemory::StringView text;
        std::size_t index;
        std::uint32_t line;
        std::uint32_t column;
    };
    const Case cases[] = {
        {"", 0, 1, 1},
        {"", 5, 1, 1}, // beyond the end
        {"abc", 0, 1, 1},
        {"abc", 2, 1, 3},
        {"abc", 3, 1, 4},
        {"abc", 99, 1, 4},
        {"a\nb", 1, 1, 2}, // the line feed belongs to the line that it ends
        {"a\nb", 2, 2, 1},
        {"a\r\nb", 3, 2, 1},
        {"a\rb", 2, 1, 3}, // alone, a carriage return ends no line
        {"\n\n\n", 3, 4, 1},
        {"\xc3\xa9\xf0\x9f\x98\x80x", 6, 1, 3},
        {"\xef\xbb\xbfx", 3, 1, 1}, // a byte order mark has no width
        {"\xef\xbb\xbfx\ny", 5, 2, 1},
        {"\xef\xbb\xbfx", 1, 1, 1},
    };
    for (const Case& testCase : cases) {
        const TextPosition position = findTextPosition(testCase.text, testCase.index);
        EXPECT_EQ(position.line, testCase.line) << testCase.text << " at " << testCase.index;
        EXPECT_EQ(position.column, testCase.column) << testCase.text << " at " << testCase.index;
    }
}

} // namespace
