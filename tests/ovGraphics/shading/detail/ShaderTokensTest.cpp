#include <ovGraphics/shading/detail/ShaderTokens.h>

#include <gtest/gtest.h>

namespace ovGraphics::shading::detail {

using ovMemory::String;

namespace {

/// The tokens with a bar between, directives marked with '!' and line starts with '^'.
String describe(const char* text) {
    String words;
    for (const Token& token : splitIntoTokens(text)) {
        words += token.startsDirective ? "!" : (token.startsLine ? "^" : "");
        words += String(token.text) + "|";
    }
    return words;
}

TEST(ShaderTokens, SplitsAsBothLanguagesDo) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {{"", ""},
                {"a", "^a|"},
                {"a.b1+_c", "^a|.|b1|+|_c|"},
                {"1.5f+.5e3-0x1F", "^1.5f|+|.5e3|-|0x1F|"},
                {"a // comment\nb", "^a|^b|"},
                {"a /* b\n c */ d", "^a|d|"},
                {"a /* never ends", "^a|"},
                {"#define A(x) x##1\nA(2)", "!#|define|A|(|x|)|x|##|1|^A|(|2|)|"},
                {"  # if 1\nx", "!#|if|1|^x|"},
                {"#define A \\\n b\nc", "!#|define|A|b|^c|"},
                {"// joined \\\n still comment\nx", "^x|"},
                {"#line 5 \"a b.c\"", "!#|line|5|\"a b.c\"|"},
                {"\"open\nx", "^\"open|^x|"},
                {"a # b", "^a|#|b|"}};
    for (const auto& row : rows) {
        EXPECT_EQ(describe(row.text), row.expected) << row.text;
    }
}

TEST(ShaderTokens, CountsPhysicalLines) {
    const auto tokens = splitIntoTokens("a\n\n/* \n */ b \\\n c // \\\n d\ne");
    ASSERT_EQ(tokens.size(), 4u);
    EXPECT_EQ(tokens[0].line, 1u);
    EXPECT_EQ(tokens[1].line, 4u);
    EXPECT_EQ(tokens[2].line, 5u);
    EXPECT_EQ(tokens[3].line, 7u);
}

} // namespace

} // namespace ovGraphics::shading::detail
