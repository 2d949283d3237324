#include <ovGraphics/shading/detail/MacroWeights.h>

#include <gtest/gtest.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

/// Weight of a use after definitions, each the text after "#define ".
MacroWeights::Weight weigh(const Buffer<String>& definitions, const String& use) {
    MacroWeights weights;
    Buffer<Buffer<Token>> lines;
    for (const String& definition : definitions) {
        lines.push_back(splitIntoTokens(definition));
        weights.addDefinition(lines.back());
    }
    weights.finish();
    const Buffer<Token> tokens = splitIntoTokens(use);
    MacroWeights::Weight total = 0;
    for (std::size_t at = 0; at < tokens.size(); ++at) {
        total += weights.weigh(tokens, at);
    }
    return total;
}

TEST(MacroWeights, CountsTokensAfterExpansion) {
    const struct {
        Buffer<String> definitions;
        String use;
        MacroWeights::Weight expected;
    } rows[] = {
        {{}, "a + b", 3},
        {{}, "1.0 2 0x3", 0},
        {{"A x + y"}, "A", 3},
        {{"A x + y"}, "A A b", 7},
        {{"A B B", "B c d"}, "A", 4},
        {{"A A A"}, "A", 2},                 // a macro does not expand within itself
        {{"F(p) p p p"}, "F(a b)", 6},       // the argument three times
        {{"F(p) p p"}, "F(F(F(a)))", 8},     // and of arguments of arguments
        {{"F(p) p p"}, "F", 1},              // without brackets it is a name
        {{"F(p, q) p q q"}, "F((a), b)", 8}, // an opening bracket weighs four
        {{"A a", "A a b c"}, "A", 3},        // the heaviest of several definitions
        {{"F (p) p"}, "F", 7},               // a space makes the bracket part of the body
    };
    for (const auto& row : rows) {
        EXPECT_EQ(weigh(row.definitions, row.use), row.expected) << row.use;
    }
}

TEST(MacroWeights, RunawayExpansionsSaturateSoon) {
    Buffer<String> doubling = {"A0 x + x"};
    Buffer<String> pasting = {"J(a, b) a##b", "A0 x + x"};
    for (int i = 1; i <= 40; ++i) {
        const String name = std::to_string(i);
        const String previous = std::to_string(i - 1);
        doubling.push_back("A" + name + " A" + previous + " + A" + previous);
        pasting.insert(pasting.begin(), "A" + name + " J(A, " + previous + ") + J(A, " + previous + ")");
    }
    String nested = "x";
    String indirect = "x";
    for (int i = 0; i < 40; ++i) {
        nested = "D(" + nested + ")";
        indirect = "C(D, " + indirect + ")";
    }
    constexpr MacroWeights::Weight MANY = 100000;
    EXPECT_GT(weigh(doubling, "A40"), MANY);
    EXPECT_GT(weigh(pasting, "J(A, 40)"), MANY);
    EXPECT_GT(weigh({"D(x) x + x"}, nested), MANY);
    EXPECT_GT(weigh({"D(x) x + x", "C(f, x) f(x)"}, indirect), MANY);
    EXPECT_GT(weigh({"D(x) x + x"}, String(5000, 'y') + " D(" + String(20000, '(')), 1u);
}

} // namespace

} // namespace ovGraphics::shading::detail
