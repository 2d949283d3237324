// What is read, what is refused, and what is said about it.
#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <sys/mman.h>

namespace {

using namespace ovExport;

const JsonExporter EXPORTER;

TEST(JsonReaderTest, everyKindOfValueIsRead) {
    const auto tree =
        EXPORTER.importIntoTree("\t{ \"object\" : {} , \"array\":[ ] ,\r\n \"string\":\"text\",\"int\":-3,"
                                "\"real\":2.5e1,\"yes\":true,\"no\":false,\"nothing\":null}\n ");
    ASSERT_TRUE(tree) << tree._error._errorInfo;
    const Node& root = *tree._tree;
    ASSERT_EQ(root.getMemberCount(), 8u);
    EXPECT_TRUE(root.getMemberValue("object")->isObject());
    EXPECT_EQ(root.getMemberValue("object")->getMemberCount(), 0u);
    EXPECT_TRUE(root.getMemberValue("array")->isArray());
    EXPECT_EQ(root.getMemberValue("array")->getArraySize(), 0u);
    EXPECT_EQ(root.getMemberValue("string")->getValueAsString(), "text");
    EXPECT_EQ(root.getMemberValue("int")->getValueAsInt(), -3);
    EXPECT_EQ(root.getMemberValue("real")->getValueAsDouble(), 25.0);
    EXPECT_TRUE(root.getMemberValue("yes")->getValueAsBool());
    EXPECT_TRUE(root.getMemberValue("no")->isBool());
    EXPECT_FALSE(root.getMemberValue("no")->getValueAsBool());
    EXPECT_EQ(root.getMemberValue("nothing")->getNodeNature(), NODE_NATURE::UNKNOWN);
    EXPECT_FALSE(tree._error._activated);
    EXPECT_EQ(tree._error._line, 0u);
    EXPECT_EQ(tree._error._errorDesc + tree._error._errorInfo, "");
}

TEST(JsonReaderTest, anyValueMayBeTheRoot) {
    for (const ovMemory::StringView text :
         {"1", "-0.5", "\"a\"", "true", "false", "null", "[]", "{}", " [ 1 ] "})
        EXPECT_TRUE(EXPORTER.importIntoTree(text)) << text;
}

TEST(JsonReaderTest, ofEqualNamesAllAreKeptAndTheFirstIsFound) {
    const auto result = EXPORTER.importIntoTree(R"({"a":1,"b":2,"a":3,"":4})");
    ASSERT_TRUE(result);
    const Node& root = *result._tree;
    EXPECT_EQ(root.getMemberCount(), 4u);
    EXPECT_EQ(root.getMemberValue("a")->getValueAsInt(), 1);
    EXPECT_EQ(root.getMemberKey(2), "a");
    EXPECT_EQ(root.getMemberValueIndex(2)->getValueAsInt(), 3);
    EXPECT_EQ(root.getMemberValue("")->getValueAsInt(), 4);
}

TEST(JsonReaderTest, stringsAreUnescaped) {
    using ovMemory::String;
    struct Case {
        ovMemory::StringView text;
        String value;
    };
    const Case cases[] = {
        {R"("")", ""},
        {R"("plain")", "plain"},
        {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
        {R"("a\u0041b")", "aAb"},
        {R"("\u0000")", String(1, '\0')},
        {R"("x\u0000y")", String("x\0y", 3)},
        {R"("\u007f\u0080\u07FF\u0800\uFFFF")", "\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf"},
        {R"("\ud800\udc00")", "\xf0\x90\x80\x80"},
        {R"("\uD83D\uDE00")", "\xf0\x9f\x98\x80"},
        {R"("\udbff\udfff")", "\xf4\x8f\xbf\xbf"},
        {R"("\\u0041")", "\\u0041"},
        {R"("0123456\n0123456789abcdef\t0")", "0123456\n0123456789abcdef\t0"},
        {"\"\xc2\x80 \xdf\xbf \xe0\xa0\x80 \xed\x9f\xbf \xee\x80\x80 \xf0\x90\x80\x80 \xf4\x8f\xbf\xbf\"",
         "\xc2\x80 \xdf\xbf \xe0\xa0\x80 \xed\x9f\xbf \xee\x80\x80 \xf0\x90\x80\x80 \xf4\x8f\xbf\xbf"},
        {"\"\x7f\"", "\x7f"},
    };
    for (const Case& testCase : cases) {
        const auto result = EXPORTER.importIntoTree(testCase.text);
        ASSERT_TRUE(result) << testCase.text << ": " << result._error._errorInfo;
        EXPECT_EQ(result._tree->getValueAsString(), testCase.value) << testCase.text;
        // The same as a name.
        const auto object = EXPORTER.importIntoTree("{" + String(testCase.text) + ":1}");
        ASSERT_TRUE(object) << testCase.text;
        EXPECT_EQ(object._tree->getMemberKey(0), testCase.value) << testCase.text;
        EXPECT_NE(object._tree->getMemberValue(testCase.value), nullptr) << testCase.text;
    }
}

TEST(JsonReaderTest, specialCharactersAreFoundAtEveryPlace) {
    // Strings are looked through eight bytes at a time.
    for (std::size_t before = 0; before < 20; ++before)
        for (std::size_t after = 0; after < 20; ++after) {
            const ovMemory::String head(before, '!'); // just above the control characters and the blank
            const ovMemory::String tail(after, '~');
            for (const ovMemory::StringView piece : {"\xc3\xa9", "\\n", "\\\"", "]"}) {
                const ovMemory::String text = "[\"" + head + ovMemory::String(piece) + tail + "\"]";
                const auto result = EXPORTER.importIntoTree(text);
                ASSERT_TRUE(result) << text;
                EXPECT_EQ(JsonExporter(EXPORTER).importIntoTree(text)._tree->getArraySize(), 1u);
                const ovMemory::StringView value = piece == "\\n" ? "\n" : piece == "\\\"" ? "\"" : piece;
                EXPECT_EQ(result._tree->getArrayElement(0)->getValueAsString(),
                          head + ovMemory::String(value) + tail);
            }
            for (const char bad : {'\0', '\x1f', '\n', '\xff'}) {
                const auto result = EXPORTER.importIntoTree("\"" + head + bad + tail + "\"");
                EXPECT_FALSE(result);
                EXPECT_EQ(result._error._index, before + 1);
            }
        }
}

TEST(JsonReaderTest, aByteOrderMarkIsSkippedOnceAtTheStart) {
    const auto result = EXPORTER.importIntoTree("\xef\xbb\xbf [1]");
    ASSERT_TRUE(result);
    EXPECT_EQ(result._tree->getSourceIndex(), 4u);
    EXPECT_FALSE(EXPORTER.importIntoTree("\xef\xbb\xbf\xef\xbb\xbf[1]"));
    EXPECT_FALSE(EXPORTER.importIntoTree(" \xef\xbb\xbf[1]"));
    EXPECT_FALSE(EXPORTER.importIntoTree("\xef\xbb"));
}

TEST(JsonReaderTest, nodesKnowTheirPlace) {
    const ovMemory::StringView text = "{ \"a\" : \"\\u0041\",\n\"b\":[ 10, -2.5,[]], \"c\": null}";
    const auto result = EXPORTER.importIntoTree(text);
    ASSERT_TRUE(result);
    const Node& root = *result._tree;
    const Node& array = *root.getMemberValue("b");
    EXPECT_EQ(root.getSourceIndex(), 0u);
    EXPECT_EQ(root.getMemberValue("a")->getSourceIndex(), text.find("\"\\u"));
    EXPECT_EQ(array.getSourceIndex(), text.find('['));
    EXPECT_EQ(array.getArrayElement(0)->getSourceIndex(), text.find("10"));
    EXPECT_EQ(array.getArrayElement(1)->getSourceIndex(), text.find("-2.5"));
    EXPECT_EQ(array.getArrayElement(2)->getSourceIndex(), text.find("[]"));
    EXPECT_EQ(root.getMemberValue("c")->getSourceIndex(), text.find("null"));
    EXPECT_EQ(result._tree->addMember("d")->getSourceIndex(), Node::NO_SOURCE_INDEX);
}

TEST(JsonReaderTest, readTreesCanBeAddedTo) {
    auto result = EXPORTER.importIntoTree(R"({"list":[1,2],"text":"abc"})");
    ASSERT_TRUE(result);
    Node& root = *result._tree;
    Node* const first = root.getMemberValue("list")->getArrayElement(0);
    for (int i = 3; i <= 20; ++i)
        root.getMemberValue("list")->addElement()->setAsInt(i);
    root.addMember("name")->setAsString("new");
    root.getMemberValue("text")->setAsString("longer than it was");
    EXPECT_EQ(root.getMemberValue("list")->getArrayElement(0), first);
    for (unsigned int i = 0; i < 20; ++i)
        EXPECT_EQ(root.getMemberValue("list")->getArrayElement(i)->getValueAsUint(), i + 1);
    EXPECT_EQ(root.getMemberValue("text")->getValueAsString(), "longer than it was");
    EXPECT_EQ(root.getMemberKey(2), "name");
}

TEST(JsonReaderTest, theTextIsNotNeededAfterwards) {
    auto text =
        std::make_unique<ovMemory::String>(R"({"a name that is long enough":"and a value of some length"})");
    const auto result = EXPORTER.importIntoTree(*text);
    text.reset();
    ASSERT_TRUE(result);
    EXPECT_EQ(result._tree->getMemberValue("a name that is long enough")->getValueAsString(),
              "and a value of some length");
}

TEST(JsonReaderTest, errorsSayWhatWhereAndWhy) {
    struct Case {
        ovMemory::String text;
        ovMemory::StringView description;
        ovMemory::String info; // without what is said of the end of the text
        std::uint32_t index;
        std::uint32_t line;
    };
    constexpr ovMemory::StringView EMPTY = "The text is empty";
    constexpr ovMemory::StringView EARLY = "The text ends too early";
    constexpr ovMemory::StringView UNEXPECTED = "Unexpected character";
    constexpr ovMemory::StringView SURROGATE = "Half a surrogate pair";
    constexpr ovMemory::StringView TOO_LARGE = "A number is too large";
    const Case cases[] = {
        {"", EMPTY, "line 1, column 1: The text is empty: expected a value", 0, 1},
        {" \n ", EMPTY, "line 2, column 2: The text is empty: expected a value", 3, 2},
        {"\xef\xbb\xbf", EMPTY, "line 1, column 1: The text is empty: expected a value", 3, 1},
        {"{", EARLY, "line 1, column 2: The text ends too early: expected the name of a member", 1, 1},
        {"[1", EARLY, "line 1, column 3: The text ends too early: expected ',' or ']' after an element", 2,
         1},
        {"\"abc", EARLY, "line 1, column 5: The text ends too early: expected '\"' at the end of a string", 4,
         1},
        {"{\n  \"name\" \"gold\"\n}", UNEXPECTED,
         "line 2, column 10: Unexpected character: expected ':' after the name of a member, found \"gold\"",
         11, 2},
        {"[1,]", UNEXPECTED, "line 1, column 4: Unexpected character: expected a value, found ]", 3, 1},
        {"[,1]", UNEXPECTED, "line 1, column 2: Unexpected character: expected a value, found ,1]", 1, 1},
        {"[1 2]", UNEXPECTED,
         "line 1, column 4: Unexpected character: expected ',' or ']' after an element, found 2]", 3, 1},
        {"[1}", UNEXPECTED,
         "line 1, column 3: Unexpected character: expected ',' or ']' after an element, found }", 2, 1},
        {"{\"a\":1,}", UNEXPECTED,
         "line 1, column 8: Unexpected character: expected the name of a member, found }", 7, 1},
        {"{a:1}", UNEXPECTED,
         "line 1, column 2: Unexpected character: expected the name of a member, found a:1}", 1, 1},
        {"{\"a\":1]", UNEXPECTED,
         "line 1, column 7: Unexpected character: expected ',' or '}' after a member, found ]", 6, 1},
        {"{} {}", UNEXPECTED,
         "line 1, column 4: Unexpected character: expected the end of the text, found {}", 3, 1},
        {ovMemory::String("[1]\0", 4), UNEXPECTED,
         "line 1, column 4: Unexpected character: expected the end of the text, found byte 0x00", 3, 1},
        {"\x7f", UNEXPECTED, "line 1, column 1: Unexpected character: expected a value, found byte 0x7f", 0,
         1},
        {"// no", UNEXPECTED, "line 1, column 1: Unexpected character: expected a value, found // no", 0, 1},
        {"'a'", UNEXPECTED, "line 1, column 1: Unexpected character: expected a value, found 'a'", 0, 1},
        {"NaN", UNEXPECTED, "line 1, column 1: Unexpected character: expected a value, found NaN", 0, 1},
        {"[tru]", UNEXPECTED, "line 1, column 5: Unexpected character: expected true, false or null, found ]",
         4, 1},
        {"nulL", UNEXPECTED, "line 1, column 4: Unexpected character: expected true, false or null, found L",
         3, 1},
        {"truee", UNEXPECTED, "line 1, column 5: Unexpected character: expected the end of the text, found e",
         4, 1},
        {"+1", UNEXPECTED, "line 1, column 1: Unexpected character: expected a value, found +1", 0, 1},
        {"-a", UNEXPECTED, "line 1, column 2: Unexpected character: expected a digit, found a", 1, 1},
        {"[1.]", UNEXPECTED, "line 1, column 4: Unexpected character: expected a digit, found ]", 3, 1},
        {".5", UNEXPECTED, "line 1, column 1: Unexpected character: expected a value, found .5", 0, 1},
        {"1e+", EARLY, "line 1, column 4: The text ends too early: expected a digit", 3, 1},
        {"1e+-2", UNEXPECTED, "line 1, column 4: Unexpected character: expected a digit, found -2", 3, 1},
        {"[-012]", "A number begins with a needless zero",
         "line 1, column 4: A number begins with a needless zero: expected a point or the number's end, "
         "found 12]",
         3, 1},
        {"1e400", TOO_LARGE,
         "line 1, column 1: A number is too large: expected at most 1.7976931348623157e+308, found 1e400", 0,
         1},
        // 2^64: an exponent that wrapped round would be 0.
        {"1e18446744073709551616", TOO_LARGE,
         "line 1, column 1: A number is too large: expected at most 1.7976931348623157e+308, found "
         "1e18446744073709551616",
         0, 1},
        {"[-1.7976931348623159e308]", TOO_LARGE,
         "line 1, column 2: A number is too large: expected at most 1.7976931348623157e+308, found "
         "-1.7976931348623159e308]",
         1, 1},
        {"\"a\nb\"", UNEXPECTED,
         "line 1, column 3: Unexpected character: expected an escape for a control character, found byte "
         "0x0a",
         2, 1},
        {R"("\x41")", UNEXPECTED,
         "line 1, column 3: Unexpected character: expected one of \"\\/bfnrtu after '\\', found x41\"", 2, 1},
        {ovMemory::String("\"\\\0\"", 4), UNEXPECTED,
         "line 1, column 3: Unexpected character: expected one of \"\\/bfnrtu after '\\', found byte 0x00", 2,
         1},
        {R"("\u00g0")", UNEXPECTED,
         "line 1, column 6: Unexpected character: expected four hexadecimal digits after '\\u', found g0\"",
         5, 1},
        {R"("\u12)", EARLY,
         "line 1, column 6: The text ends too early: expected four hexadecimal digits after '\\u'", 5, 1},
        {R"("\ud800")", SURROGATE,
         "line 1, column 2: Half a surrogate pair: expected \\ud800 to \\udbff followed by \\udc00 to "
         "\\udfff, "
         "found \\ud800\"",
         1, 1},
        {R"("\ud800\u0041")", SURROGATE,
         "line 1, column 2: Half a surrogate pair: expected \\ud800 to \\udbff followed by \\udc00 to "
         "\\udfff, "
         "found \\ud800\\u0041\"",
         1, 1},
        {R"("\udc00\ud800")", SURROGATE,
         "line 1, column 2: Half a surrogate pair: expected \\ud800 to \\udbff followed by \\udc00 to "
         "\\udfff, "
         "found \\udc00\\ud800\"",
         1, 1},
        {"[\"caf\xe9\", 1]", "The text is not UTF-8",
         "line 1, column 6: The text is not UTF-8: expected a well-formed character, found ?\", 1]", 5, 1},
        {"[\"\xc3\xa9\", x\xff" + ovMemory::String(100, 'y'), UNEXPECTED,
         "line 1, column 7: Unexpected character: expected a value, found x?" + ovMemory::String(38, 'y'), 7,
         1},
    };
    for (const Case& testCase : cases) {
        const auto result = EXPORTER.importIntoTree(testCase.text);
        const ExportError& error = result._error;
        EXPECT_FALSE(result) << testCase.text;
        EXPECT_TRUE(error._activated) << testCase.text;
        EXPECT_EQ(error._errorDesc, testCase.description) << testCase.text;
        const bool isAtEnd = testCase.index == testCase.text.size();
        EXPECT_EQ(error._errorInfo, testCase.info + (isAtEnd ? ", found the end of the text" : ""));
        EXPECT_EQ(error._index, testCase.index) << testCase.text;
        EXPECT_EQ(error._line, testCase.line) << testCase.text;
    }
}

TEST(JsonReaderTest, whatIsNotUtf8IsRefusedWhereItBegins) {
    const ovMemory::StringView bad[] = {
        "\x80", // a continuation byte alone
        "\xbf",
        "\xc0\x80", // NUL in two bytes
        "\xc1\xbf", // 0x7f in two bytes
        "\xc3",     // cut short
        "\xc3(",
        "\xe0\x9f\xbf", // 0x7ff in three bytes
        "\xe2\x82",
        "\xe2(\xac",
        "\xe2\x82(",
        "\xed\xa0\x80", // surrogates
        "\xed\xbf\xbf",
        "\xf0\x8f\xbf\xbf", // 0xffff in four bytes
        "\xf0\x9f\x98",
        "\xf0\x9f\x98(",
        "\xf4\x90\x80\x80", // beyond U+10FFFF
        "\xf5\x80\x80\x80",
        "\xfe",
        "\xff",
    };
    for (const ovMemory::StringView bytes : bad) {
        const ovMemory::String piece(bytes);
        for (const ovMemory::String& text : {"[\"" + piece + "\"]", "{\"" + piece + "\":1}", "[\"" + piece}) {
            const auto result = EXPORTER.importIntoTree(text);
            EXPECT_FALSE(result);
            EXPECT_EQ(result._error._errorDesc, "The text is not UTF-8");
            EXPECT_EQ(result._error._index, 2u);
        }
        // Outside strings no such byte is expected anyway.
        EXPECT_EQ(EXPORTER.importIntoTree(piece)._error._index, 0u);
    }
}

TEST(JsonReaderTest, aTextCutAtAnyByteIsAnErrorInsideIt) {
    const ovMemory::String text = "\xef\xbb\xbf"
                                  R"( {"name":"g\u00e4\n\ud83d\ude00 )"
                                  "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"
                                  R"(","values":[1,-2.5e+3,true,false,null,{"a":[[]]}],"last":"x"})";
    ASSERT_TRUE(EXPORTER.importIntoTree(text)) << EXPORTER.importIntoTree(text)._error._errorInfo;
    for (std::size_t size = 0; size < text.size(); ++size) {
        // On the heap and exactly as long, so that the address sanitizer sees every byte read beyond.
        const ovMemory::Buffer<char> cut(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size));
        const auto result = EXPORTER.importIntoTree(ovMemory::StringView(cut.data(), cut.size()));
        EXPECT_FALSE(result) << size;
        EXPECT_TRUE(result._error._activated) << size;
        EXPECT_LE(result._error._index, size);
        EXPECT_EQ(result._error._line, 1u);
    }
}

TEST(JsonReaderTest, theLastLineOfALongTextIsCounted) {
    ovMemory::String text = "[\r\n";
    for (int i = 0; i < 1000; ++i)
        text += "  1,\r\n";
    text += "  oops]";
    const auto result = EXPORTER.importIntoTree(text);
    ASSERT_FALSE(result);
    EXPECT_EQ(result._error._line, 1002u);
    EXPECT_EQ(result._error._errorInfo,
              "line 1002, column 3: Unexpected character: expected a value, found oops]");
}

TEST(JsonReaderTest, aTextOfFourGigabytesIsRefusedUnread) {
    // Zeros that take no memory.
    constexpr std::size_t SIZE = 0xffffffffu;
    void* const text = mmap(nullptr, SIZE, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(text, MAP_FAILED);
    const auto result = EXPORTER.importIntoTree(ovMemory::StringView(static_cast<const char*>(text), SIZE));
    munmap(text, SIZE);
    EXPECT_FALSE(result);
    EXPECT_EQ(result._error._index, 0u);
    EXPECT_EQ(result._error._errorInfo, "line 1, column 1: The text is 4 GiB or larger");
}

} // namespace
