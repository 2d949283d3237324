// Numbers in and out of texts, beside strtod, strtof and printf.
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <random>

namespace {

using namespace ovExport;
using TYPE = NODE_VALUE_TYPE;

ovMemory::UniquePtr<Node> read(ovMemory::StringView text) {
    return JsonExporter().importIntoTree(text)._tree;
}

template <typename NUMBER>
ovMemory::String write(NUMBER number) {
    const auto node = Node::create(NODE_NATURE::UNKNOWN);
    if constexpr (std::is_same_v<NUMBER, float>)
        node->setAsFloat(number);
    else
        node->setAsDouble(number);
    return JsonExporter().exportTreeIntoString(node.get());
}

TEST(NumberTextTest, readNumbersGetTheNarrowestType) {
    struct Case {
        ovMemory::StringView text;
        TYPE type;
        ovMemory::StringView written; // empty: as it was read
    };
    const Case cases[] = {
        {"0", TYPE::INT, ""},
        {"-0", TYPE::DOUBLE, "-0.0"},
        {"-1", TYPE::INT, ""},
        {"2147483647", TYPE::INT, ""},
        {"2147483648", TYPE::UINT, ""},
        {"4294967295", TYPE::UINT, ""},
        {"4294967296", TYPE::INT64, ""},
        {"-2147483648", TYPE::INT, ""},
        {"-2147483649", TYPE::INT64, ""},
        {"9007199254740993", TYPE::INT64, ""}, // 2^53 + 1
        {"999999999999999999", TYPE::INT64, ""},
        {"9223372036854775807", TYPE::INT64, ""},
        {"9223372036854775808", TYPE::UINT64, ""},
        {"9999999999999999999", TYPE::UINT64, ""},
        {"10000000000000000000", TYPE::UINT64, ""},
        {"18446744073709551615", TYPE::UINT64, ""},
        {"18446744073709551616", TYPE::DOUBLE, "1.8446744073709552e+19"},
        {"-9223372036854775808", TYPE::INT64, ""},
        {"-9223372036854775809", TYPE::DOUBLE, "-9.223372036854776e+18"},
        {"-18446744073709551615", TYPE::DOUBLE, "-1.8446744073709552e+19"},
        {"1.0", TYPE::DOUBLE, ""},
        {"0.0", TYPE::DOUBLE, ""},
        {"-0.0", TYPE::DOUBLE, ""},
        {"1e0", TYPE::DOUBLE, "1.0"},
        {"1E+2", TYPE::DOUBLE, "100.0"},
        {"1e-2", TYPE::DOUBLE, "0.01"},
        {"100000000000000.0", TYPE::DOUBLE, ""},
        {"1e15", TYPE::DOUBLE, "1e+15"},
        {"1e-5", TYPE::DOUBLE, "0.00001"},
        {"1e-6", TYPE::DOUBLE, "1e-06"},
        {"0.1", TYPE::DOUBLE, ""},
        {"0.30000000000000004", TYPE::DOUBLE, ""},
        {"1.7976931348623157e+308", TYPE::DOUBLE, ""},
        {"2.2250738585072014e-308", TYPE::DOUBLE, ""}, // the smallest normal double
        {"2.225073858507201e-308", TYPE::DOUBLE, ""},  // the largest below it
        {"5e-324", TYPE::DOUBLE, ""},
        {"2e-324", TYPE::DOUBLE, "0.0"},
        {"-2e-324", TYPE::DOUBLE, "-0.0"},
        {"1e-400", TYPE::DOUBLE, "0.0"},
        {"1e-99999999999999999999", TYPE::DOUBLE, "0.0"},
        {"0e99999999999999999999", TYPE::DOUBLE, "0.0"},
        {"-0.000e400", TYPE::DOUBLE, "-0.0"},
    };
    for (const Case& testCase : cases) {
        const auto node = read(testCase.text);
        ASSERT_NE(node, nullptr) << testCase.text;
        EXPECT_EQ(node->getNodeValueType(), testCase.type) << testCase.text;
        EXPECT_EQ(node->getValueAsString(), testCase.written.empty() ? testCase.text : testCase.written);
    }
}

TEST(NumberTextTest, veryLongNumbersAreRead) {
    const ovMemory::String zeros(100000, '0');
    struct Case {
        ovMemory::String text;
        double value;
    };
    const Case cases[] = {
        {"0." + zeros + "1", 0.0},
        {"0." + zeros + "1e100001", 1.0},
        {"1" + zeros + "e-100000", 1.0},
        {"1." + zeros, 1.0},
        {"0." + ovMemory::String(300, '0') + "25e301", 2.5},
        {"9007199254740993." + zeros + "1", 9007199254740994.0}, // above the middle between two doubles
        {"9007199254740993." + zeros, 9007199254740992.0},       // the middle: to even
    };
    for (const Case& testCase : cases) {
        const auto node = read(testCase.text);
        ASSERT_NE(node, nullptr) << testCase.text.substr(0, 20);
        EXPECT_EQ(node->getValueAsDouble(), testCase.value) << testCase.text.substr(0, 20);
    }
    EXPECT_EQ(read("1" + zeros), nullptr);
    EXPECT_EQ(read("1" + zeros + "e-99000"), nullptr);
}

/// A number's text of random length, point and exponent.
ovMemory::String makeNumberText(std::mt19937& random) {
    const auto appendDigits = [&random](ovMemory::String& text, unsigned int count) {
        for (; count > 0; --count)
            text += static_cast<char>('0' + random() % 10);
    };
    ovMemory::String text = random() % 2 == 0 ? "-" : "";
    text += static_cast<char>('1' + random() % 9);
    appendDigits(text, random() % 22);
    if (random() % 4 != 0) {
        text += '.';
        appendDigits(text, 1 + random() % 22);
    }
    if (random() % 2 == 0)
        text += "e" + std::to_string(static_cast<int>(random() % 640) - 340);
    return text;
}

TEST(NumberTextTest, readDoublesAreTheNearest) {
    constexpr int COUNT = 50000;
    std::mt19937 random(4);
    for (int i = 0; i < COUNT; ++i) {
        const ovMemory::String text = makeNumberText(random);
        const double expected = std::strtod(text.c_str(), nullptr);
        const auto node = read(text);
        ASSERT_EQ(node == nullptr, std::isinf(expected)) << text;
        if (node) {
            ASSERT_EQ(node->getValueAsDouble(), expected) << text;
        }
    }
}

/// Significant digits of a number's text.
std::size_t countDigits(ovMemory::StringView text) {
    text = text.substr(0, text.find('e'));
    ovMemory::String digits;
    for (const char character : text)
        if (character >= '0' && character <= '9')
            digits += character;
    digits.erase(0, digits.find_first_not_of('0'));
    digits.erase(digits.find_last_not_of('0') + 1);
    return digits.size();
}

/// Whether printf needs as many digits for a text that reads back as the value.
template <typename REAL>
bool needsAllDigits(ovMemory::StringView written, REAL value, REAL (*parse)(const char*, char**)) {
    const std::size_t count = countDigits(written);
    if (count <= 1)
        return true;
    char shorter[64];
    std::snprintf(shorter, sizeof(shorter), "%.*e", static_cast<int>(count) - 2, static_cast<double>(value));
    return parse(shorter, nullptr) != value;
}

TEST(NumberTextTest, writtenDoublesReadBackWithTheFewestDigits) {
    constexpr int COUNT = 50000;
    std::mt19937_64 random(5);
    for (int i = 0; i < COUNT; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value))
            continue;
        const ovMemory::String written = write(value);
        ASSERT_EQ(std::strtod(written.c_str(), nullptr), value) << written;
        ASSERT_EQ(read(written)->getValueAsDouble(), value) << written;
        ASSERT_TRUE(needsAllDigits(written, value, &std::strtod)) << written;
    }
}

TEST(NumberTextTest, writtenFloatsReadBackWithTheFewestDigits) {
    constexpr int COUNT = 50000;
    std::mt19937 random(6);
    for (int i = 0; i < COUNT; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value))
            continue;
        const ovMemory::String written = write(value);
        ASSERT_EQ(std::strtof(written.c_str(), nullptr), value) << written;
        ASSERT_EQ(read(written)->getValueAsFloat(), value) << written;
        ASSERT_TRUE(needsAllDigits(written, value, &std::strtof)) << written;
    }
}

TEST(NumberTextTest, floatsThatSurviveNoDoubleAreWrittenLonger) {
    // Its shortest text, 7.038531e-26, becomes as a double the middle between it and its neighbour, and that
    // rounds to the neighbour.
    const auto value = std::bit_cast<float>(0x15ae43fdu);
    EXPECT_NE(static_cast<float>(std::strtod("7.038531e-26", nullptr)), value);
    const ovMemory::String written = write(value);
    EXPECT_EQ(static_cast<float>(std::strtod(written.c_str(), nullptr)), value);
    EXPECT_EQ(read(written)->getValueAsFloat(), value);
}

TEST(NumberTextTest, writtenNumbersLookLikeNumbers) {
    struct Case {
        float value;
        ovMemory::StringView text;
    };
    const Case cases[] = {
        {0.0f, "0.0"},
        {-0.0f, "-0.0"},
        {1.0f, "1.0"},
        {0.5f, "0.5"},
        {0.1f, "0.1"},
        {-2.25f, "-2.25"},
        {1e6f, "1000000.0"},
        {1e7f, "1e+07"},
        {16777216.0f, "1.6777216e+07"},
        {1e-5f, "0.00001"},
        {1e-6f, "1e-06"},
        {3.4028235e38f, "3.4028235e+38"},
        {1e-45f, "1e-45"},
        {1.17549435e-38f, "1.1754944e-38"},
        {INFINITY, "\"Infinity\""},
        {-INFINITY, "\"-Infinity\""},
        {NAN, "\"NaN\""},
    };
    for (const Case& testCase : cases)
        EXPECT_EQ(write(testCase.value), testCase.text);
    EXPECT_EQ(write(123456789012345.0), "123456789012345.0");
    EXPECT_EQ(write(1e22), "1e+22");
}

TEST(NumberTextTest, nothingDependsOnTheLocale) {
    const ovMemory::String before = std::setlocale(LC_NUMERIC, nullptr);
    // Where none of these is installed, the test says what it would anyway.
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8"})
        if (std::setlocale(LC_NUMERIC, name))
            break;
    const ovMemory::String written = write(1234.5);
    const auto node = read("0.123456789012345678901234");
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_EQ(written, "1234.5");
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getValueAsDouble(), 0.123456789012345678901234);
}

} // namespace
