#include <ovGraphics/shading/detail/TextLimits.h>

#include <gtest/gtest.h>

namespace ovGraphics::shading::detail {

using ovMemory::String;

namespace {

String repeat(const String& text, int count) {
    String all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST(TextLimits, GoodTextsPass) {
    const struct {
        const char* name;
        String text;
    } rows[] = {
        {"empty", ""},
        {"table of numbers", "float a[4096] = { " + repeat("1.0, ", 4096) + " };"},
        {"table of vectors", "vec4 a[256] = { " + repeat("vec4(1.0, -2.0, 3.0, 4.0), ", 256) + " };"},
        {"many statements", "void main() {" + repeat("x += a * sin(b);", 5000) + "}"},
        {"chain of else", "void main() {" + repeat("if (a > 1.0) { b(); } else ", 60) + "{} }"},
        {"nesting", repeat("(", 100) + repeat(")", 100)},
        {"loops in a row", "void main() {" + repeat("for (int i = 0; i < 4; ++i) { a(); }", 200) + "}"},
        {"unbalanced", "}}}))) ]]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(findExceededLimit(row.text), "") << row.name;
    }
}

TEST(TextLimits, EachLimitHasItsPlaceAndWords) {
    const String statement = "the statement is too long or too deep with its macros expanded";
    const String nested = "brackets are nested deeper than 128 levels";
    const struct {
        const char* name;
        String text;
        String expected;
    } rows[] = {
        {"bytes", String(300000, 'a'), "the text is 300000 bytes long with its defines; 262144 are allowed"},
        {"round", "\n" + repeat("(", 129), "source:2: " + nested},
        {"square", repeat("[", 129), "source:1: " + nested},
        {"braces", repeat("{", 129), "source:1: " + nested},
        {"line directive", "#line 70 \"a.ovsl\"\nfoo;\n" + repeat("(", 129), "a.ovsl:71: " + nested},
        {"sum", "x = x" + repeat(" + x", 5000) + ";", "source:1: " + statement},
        {"signs", "x = " + repeat("- ", 9000) + "x;", "source:1: " + statement},
        {"comma operators", "x = (" + repeat("x,", 9000) + "x);", "source:1: " + statement},
        {"chain of else", "{ " + repeat("if (x) a(); else ", 1000) + "b(); }", "source:1: " + statement},
        {"chain of else with braces", "{ " + repeat("if (x) { a(); } else ", 1000) + "{} }",
         "source:1: " + statement},
        {"nested if", "{ " + repeat("if (x) ", 1000) + "a(); }", "source:1: " + statement},
        {"nested loops", "{ " + repeat("for (;;) {", 20) + repeat("}", 21), "source:1: " + statement},
        {"conditions", "x = " + repeat("x ? x : ", 1000) + "x;", "source:1: " + statement},
        {"members", "x = v" + repeat(".xyzw", 9000) + ";", "source:1: " + statement},
        {"macro", "#define A " + repeat("x+", 2000) + "x\ny = A + A + A;", "source:2: " + statement},
        {"condition", "#if " + repeat("!", 9000) + "1\n#endif",
         "source:1: the directive is too long or nests too deeply"},
        {"array", "float a[100000000];", "source:1: arrays have at most 65536 elements"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(findExceededLimit(row.text), row.expected) << row.name;
    }
}

} // namespace

} // namespace ovGraphics::shading::detail
