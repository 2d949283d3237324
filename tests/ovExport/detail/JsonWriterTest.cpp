// The layout of written texts.
#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <rapidjson/document.h>

namespace {

using namespace ovExport;

TEST(JsonWriterTest, layoutsArePrettyAndCompact) {
    struct Case {
        ovMemory::StringView pretty;
        ovMemory::StringView compact;
    };
    const Case cases[] = {
        {"{}", "{}"},
        {"[]", "[]"},
        {"null", "null"},
        {"-7", "-7"},
        {"\"a\"", "\"a\""},
        {"[\n    1,\n    []\n]", "[1,[]]"},
        {"{\n    \"a\": {},\n    \"b\": {\n        \"c\": [\n            true\n        ]\n    }\n}",
         "{\"a\":{},\"b\":{\"c\":[true]}}"},
        {"{\n    \"a\": 1,\n    \"a\": 2\n}", "{\"a\":1,\"a\":2}"},
    };
    JsonExporter exporter;
    EXPECT_TRUE(exporter.isPretty());
    for (const Case& testCase : cases) {
        for (const ovMemory::StringView text : {testCase.pretty, testCase.compact}) {
            const auto tree = exporter.importIntoTree(text);
            ASSERT_TRUE(tree) << text;
            exporter.setPretty(true);
            EXPECT_EQ(exporter.exportTreeIntoString(tree._tree.get()), testCase.pretty);
            exporter.setPretty(false);
            EXPECT_EQ(exporter.exportTreeIntoString(tree._tree.get()), testCase.compact);
        }
    }
}

TEST(JsonWriterTest, anyNodeCanBeWritten) {
    const JsonExporter exporter;
    const auto tree = exporter.importIntoTree(R"({"a":[{"b":1}]})");
    ASSERT_TRUE(tree);
    EXPECT_EQ(exporter.exportTreeIntoString(tree._tree->getMemberValue("a")->getArrayElement(0)),
              "{\n    \"b\": 1\n}");
    EXPECT_EQ(exporter.exportTreeIntoString(nullptr), "");
}

TEST(JsonWriterTest, indentationEndsAtALimit) {
    constexpr unsigned int DEPTH = 70;
    static_assert(DEPTH > JsonExporter::MAX_INDENTED_DEPTH);
    const JsonExporter exporter;
    const ovMemory::String text = ovMemory::String(DEPTH, '[') + "1,2" + ovMemory::String(DEPTH, ']');
    const auto tree = exporter.importIntoTree(text);
    ASSERT_TRUE(tree);
    ovMemory::String expected;
    for (unsigned int level = 0; level < JsonExporter::MAX_INDENTED_DEPTH; ++level)
        expected += "[\n" + ovMemory::String(4 * (level + 1), ' ');
    expected += "[[[[[[1,2]]]]]]";
    for (unsigned int level = JsonExporter::MAX_INDENTED_DEPTH; level > 0; --level)
        expected += "\n" + ovMemory::String(4 * (level - 1), ' ') + "]";
    EXPECT_EQ(exporter.exportTreeIntoString(tree._tree.get()), expected);
}

TEST(JsonWriterTest, stringsAreEscaped) {
    using ovMemory::String;
    struct Case {
        String value;
        ovMemory::StringView text;
    };
    const Case cases[] = {
        {"", R"("")"},
        {"\"\\/\b\f\n\r\t", R"("\"\\/\b\f\n\r\t")"},
        {String("\0\x01\x1f\x7f", 4), "\"\\u0000\\u0001\\u001f\x7f\""},
        {"\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80", "\"\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\""},
        {"a\xff"
         "b\xe2\x82",
         "\"a\xef\xbf\xbd"
         "b\xef\xbf\xbd\xef\xbf\xbd\""},
        {"\xed\xa0\x80", "\"\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\""},
    };
    JsonExporter exporter;
    exporter.setPretty(false);
    for (const Case& testCase : cases) {
        const auto root = Node::create();
        root->addMember(testCase.value)->setAsString(testCase.value);
        const String text(testCase.text);
        EXPECT_EQ(exporter.exportTreeIntoString(root.get()), "{" + text + ":" + text + "}");
    }
}

TEST(JsonWriterTest, everyByteAtEveryPlaceGivesValidText) {
    JsonExporter exporter;
    const auto root = Node::create();
    for (unsigned int byte = 0; byte < 256; ++byte)
        for (std::size_t place = 0; place < 4; ++place) {
            ovMemory::String value = "\xf0\x9f\x98\x80";
            value[place] = static_cast<char>(byte);
            root->addMember("value")->setAsString(value);
            rapidjson::Document document;
            const ovMemory::String text = exporter.exportTreeIntoString(root.get());
            document.Parse<rapidjson::kParseValidateEncodingFlag>(text.data(), text.size());
            ASSERT_FALSE(document.HasParseError()) << byte << " at " << place;
        }
}

} // namespace
