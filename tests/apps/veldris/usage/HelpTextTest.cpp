#include <veldris/usage/HelpText.h>

#include "veldris/commands/CommandTesting.h"

#include <cstdlib>

namespace {

using ovMemory::String;
using ovMemory::StringView;

TEST(HelpTextTest, linesBreakBetweenWordsBelowTheirColumn) {
    EXPECT_EQ(veldris::wrapText("one two three", 13), "one two three");
    EXPECT_EQ(veldris::wrapText("one two three", 12), "one two\nthree");
    EXPECT_EQ(veldris::wrapText("  one two three\n", 9), "  one two\n  three\n");
    EXPECT_EQ(veldris::wrapText("  --a  one two three\n\nfour", 15), "  --a  one two\n       three\n\nfour");
    EXPECT_EQ(veldris::wrapText("unbreakable-word next", 6), "unbreakable-word\nnext");
    EXPECT_EQ(veldris::wrapText("one  \ntwo", 6), "one\ntwo");
    EXPECT_EQ(veldris::wrapText("", 6), "");
}

class Columns {
public:
    explicit Columns(const char* width) { setenv("COLUMNS", width, 1); }
    ~Columns() { unsetenv("COLUMNS"); }
};

std::size_t longestLine(StringView text) {
    std::size_t longest = 0;
    while (!text.empty()) {
        const StringView line = text.substr(0, text.find('\n'));
        longest = std::max(longest, line.size());
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return longest;
}

// Whatever the length of a name, the text stands beside it or below.
TEST(HelpTextTest, textsOfOptionsStandInTheirColumn) {
    const Columns columns("80");
    for (const char* command : {"apply", "bake", "check", "demo", "info", "materials", "render", "shaders"}) {
        const String help = runVeldris({"help", command}).output;
        const std::size_t begin = help.find("\nOptions:\n");
        ASSERT_NE(begin, String::npos) << command;
        const String options = help.substr(begin, help.find("\n\n", begin) - begin);
        for (std::size_t at = options.find("\n  "); at != String::npos; at = options.find("\n  ", at + 1))
            EXPECT_TRUE(options[at + 3] == '-' || options.compare(at + 3, 26, String(26, ' ')) == 0)
                << command << options.substr(at, 60);
    }
}

TEST(HelpTextTest, helpFitsTheTerminal) {
    for (const char* width : {"80", "120"}) {
        const Columns columns(width);
        for (const char* command :
             {"apply", "bake", "check", "demo", "info", "materials", "render", "shaders"})
            EXPECT_LE(longestLine(runVeldris({"help", command}).output), std::stoul(width)) << command;
    }
    const Columns narrow("1");
    EXPECT_EQ(veldris::helpWidth(), 40u);
}

} // namespace
