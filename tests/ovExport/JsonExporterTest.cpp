#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovExport/JsonExporter.h>
#include <ovExport/support/Trees.h>
#include <rapidjson/document.h>

namespace {

using namespace ovExport;
using ovMemory::String;
using ovMemory::StringView;

/// Where a tree and the document of another reader differ, or an empty text.
String findDifference(const Node& node, const rapidjson::Value& value) {
    if (node.isObject() != value.IsObject() || node.isArray() != value.IsArray() ||
        node.isString() != value.IsString() || node.isBool() != value.IsBool() ||
        (node.getNodeNature() == NODE_NATURE::UNKNOWN) != value.IsNull())
        return "kinds differ";
    if (node.isString() &&
        node.getValueAsStringView() != StringView(value.GetString(), value.GetStringLength()))
        return "strings differ: " + node.getValueAsString();
    if (node.isBool() && node.getValueAsBool() != value.GetBool())
        return "bools differ";
    if (node.getNodeValueType() == NODE_VALUE_TYPE::DOUBLE) {
        // Its numbers are some units in the last place off, and wrong below the smallest normal double; those
        // that it calls exact run into undefined behaviour there. NumberTextTest compares with strtod.
        const double number = node.getValueAsDouble();
        const double tolerance = std::max(1e-14 * std::abs(number), std::numeric_limits<double>::min());
        return std::abs(value.GetDouble() - number) <= tolerance
                   ? ""
                   : "doubles differ: " + node.getValueAsString();
    }
    if (node.isValueTypeNumber()) {
        const bool isEqual = value.IsUint64() ? value.GetUint64() == node.getValueAsUint64()
                                              : value.GetInt64() == node.getValueAsInt64();
        return isEqual ? "" : "integers differ: " + node.getValueAsString();
    }
    if (value.IsArray()) {
        String difference = node.getArraySize() == value.Size() ? "" : "sizes differ";
        for (unsigned int i = 0; difference.empty() && i < value.Size(); ++i)
            difference = findDifference(*node.getArrayElement(i), value[i]);
        return difference;
    }
    if (!value.IsObject())
        return "";
    String difference = node.getMemberCount() == value.MemberCount() ? "" : "sizes differ";
    for (unsigned int i = 0; difference.empty() && i < value.MemberCount(); ++i) {
        const auto& member = value.MemberBegin()[i];
        if (node.getMemberKey(i) != StringView(member.name.GetString(), member.name.GetStringLength()))
            return "names differ: " + String(node.getMemberKey(i));
        difference = findDifference(*node.getMemberValueIndex(i), member.value);
    }
    return difference;
}

void parse(rapidjson::Document& document, const String& text) {
    constexpr unsigned int FLAGS = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag;
    // By its end, not by its size: with a size it skips stray bytes of a byte order mark.
    document.Parse<FLAGS>(text.c_str());
}

TEST(JsonExporterTest, randomTreesSurviveARoundTrip) {
    constexpr int COUNT = 4000;
    RandomTrees trees(1);
    JsonExporter exporter;
    for (int i = 0; i < COUNT; ++i) {
        exporter.setPretty(i % 2 == 0);
        const auto tree = trees.makeTree(false);
        const String text = exporter.exportTreeIntoString(tree.get());
        const auto result = exporter.importIntoTree(text);
        ASSERT_TRUE(result) << result._error._errorInfo << "\n" << text;
        // NaN and infinities come back as strings; natures stay.
        ASSERT_EQ(findDifference(*tree, *result._tree, false), "") << text;
        const String again = exporter.exportTreeIntoString(result._tree.get());
        const auto second = exporter.importIntoTree(again);
        ASSERT_TRUE(second) << second._error._errorInfo;
        ASSERT_EQ(findDifference(*result._tree, *second._tree, true), "") << again;
    }
}

TEST(JsonExporterTest, anotherReaderReadsTheSame) {
    constexpr int COUNT = 4000;
    RandomTrees trees(2);
    JsonExporter exporter;
    for (int i = 0; i < COUNT; ++i) {
        exporter.setPretty(i % 2 == 0);
        const String text = exporter.exportTreeIntoString(trees.makeTree(true).get());
        const auto result = exporter.importIntoTree(text);
        ASSERT_TRUE(result) << result._error._errorInfo << "\n" << text;
        rapidjson::Document document;
        parse(document, text);
        ASSERT_FALSE(document.HasParseError()) << text;
        ASSERT_EQ(findDifference(*result._tree, document), "") << text;
    }
}

TEST(JsonExporterTest, anotherReaderRefusesTheSame) {
    constexpr int COUNT = 20000;
    // Bytes that matter to the grammar, some that do not, and some that are not UTF-8.
    constexpr StringView BYTES = "\"\\{}[]:,0123456789.-+eEtfnu \n\t/ad\x01\x7f\x80\xc3\xa9\xff";
    RandomTrees trees(3);
    const JsonExporter exporter;
    int refused = 0;
    for (int i = 0; i < COUNT; ++i) {
        String text = exporter.exportTreeIntoString(trees.makeTree(true).get());
        for (unsigned int changes = 1 + trees.pick(3); changes > 0; --changes) {
            const std::size_t place = trees.pick(static_cast<unsigned int>(text.size()));
            const char byte = BYTES[trees.pick(static_cast<unsigned int>(BYTES.size()))];
            if (trees.pick(3) == 0)
                text.erase(place, 1).append(text.empty() ? "0" : "");
            else if (trees.pick(2) == 0)
                text.insert(place, 1, byte);
            else
                text[place] = byte;
        }
        const auto result = exporter.importIntoTree(text);
        rapidjson::Document document;
        parse(document, text);
        // It refuses 0e999 and takes 10e308, so whether numbers are too large is not its to judge.
        if (result._error._errorDesc == "A number is too large" ||
            document.GetParseError() == rapidjson::kParseErrorNumberTooBig)
            continue;
        ASSERT_EQ(static_cast<bool>(result), !document.HasParseError()) << text << "\n"
                                                                        << result._error._errorInfo;
        refused += result ? 0 : 1;
        if (result) {
            ASSERT_EQ(findDifference(*result._tree, document), "") << text;
        }
    }
    EXPECT_GT(refused, COUNT / 10);
    EXPECT_LT(refused, COUNT);
}

/// Follows the only child from a root downwards; the number of steps.
unsigned int measureDepth(const Node* node) {
    unsigned int depth = 0;
    while (node->getArraySize() + node->getMemberCount() > 0) {
        node = node->isArray() ? node->getArrayElement(0) : node->getMemberValueIndex(0);
        ++depth;
    }
    return depth;
}

String repeat(StringView piece, unsigned int count) {
    String text;
    for (; count > 0; --count)
        text += piece;
    return text;
}

TEST(JsonExporterTest, nestingUpToTheLimitIsRead) {
    struct Case {
        StringView open;
        StringView close;
    };
    JsonExporter exporter;
    for (const Case& testCase : {Case{"[", "]"}, Case{"{\"a\":", "}"}, Case{" [\n", " ]"}}) {
        const auto make = [&testCase](unsigned int depth) {
            return repeat(testCase.open, depth) + "1" + repeat(testCase.close, depth);
        };
        const auto result = exporter.importIntoTree(make(JsonExporter::MAX_DEPTH));
        ASSERT_TRUE(result) << result._error._errorInfo;
        EXPECT_EQ(measureDepth(result._tree.get()), JsonExporter::MAX_DEPTH);
        for (const bool pretty : {true, false}) {
            exporter.setPretty(pretty);
            const auto again = exporter.importIntoTree(exporter.exportTreeIntoString(result._tree.get()));
            ASSERT_TRUE(again) << again._error._errorInfo;
            EXPECT_EQ(findDifference(*result._tree, *again._tree, true), "");
        }
        for (const unsigned int depth : {JsonExporter::MAX_DEPTH + 1, 10 * JsonExporter::MAX_DEPTH}) {
            const auto tooDeep = exporter.importIntoTree(make(depth));
            EXPECT_FALSE(tooDeep);
            EXPECT_EQ(tooDeep._error._errorDesc, "Arrays and objects are nested too deep");
            const std::size_t lead = testCase.open.find_first_of("[{");
            EXPECT_EQ(tooDeep._error._index, JsonExporter::MAX_DEPTH * testCase.open.size() + lead);
        }
    }
}

TEST(JsonExporterTest, openedAndNeverClosedIsAnError) {
    for (const StringView piece : {"[", "{\"a\":", "[[],", "[{},"}) {
        const auto result = JsonExporter().importIntoTree(repeat(piece, 50000));
        EXPECT_FALSE(result);
        EXPECT_EQ(result._error._errorDesc, "The text ends too early");
    }
}

TEST(JsonExporterTest, treesOfAnyDepthAreWrittenAndFreed) {
    constexpr unsigned int DEPTH = 1000000;
    const auto root = Node::create();
    Node* node = root.get();
    for (unsigned int i = 0; i < DEPTH; ++i)
        node = i % 2 == 0 ? node->addMember("a") : node->addElement();
    JsonExporter exporter;
    exporter.setPretty(false);
    const String expected = repeat("{\"a\":[", DEPTH / 2) + "null" + repeat("]}", DEPTH / 2);
    EXPECT_TRUE(exporter.exportTreeIntoString(root.get()) == expected);
    exporter.setPretty(true);
    EXPECT_LT(exporter.exportTreeIntoString(root.get()).size(), 2 * expected.size());
}

TEST(JsonExporterTest, hugeDocumentsAreRead) {
    constexpr unsigned int COUNT = 1000000;
    const String longText(5000000, 'x');
    const auto result = JsonExporter().importIntoTree("[" + repeat("7,", COUNT) + "\"" + longText + "\"]");
    ASSERT_TRUE(result);
    ASSERT_EQ(result._tree->getArraySize(), COUNT + 1);
    EXPECT_EQ(result._tree->getArrayElement(COUNT - 1)->getValueAsInt(), 7);
    EXPECT_EQ(result._tree->getArrayElement(COUNT)->getValueAsStringView(), longText);
}

/// A derived class that adds to what its base writes.
class Material : public Exportable {
public:
    void exportClassToTree(Node* node) override {
        node->addMember("name")->setAsString(name);
        node->addMember("alphaValue")->setAsFloat(alpha);
    }

    void importClassFromTree(Node* node) override {
        if (const Node* const member = node->getMemberValue("name"); member && member->isString())
            name = member->getValueAsString();
        if (const Node* const member = node->getMemberValue("alphaValue");
            member && member->isValueTypeNumber())
            alpha = member->getValueAsFloat();
    }

    String name = "gold";
    float alpha = 0.1f;
};

class SpecialMaterial : public Material {
public:
    void exportClassToTree(Node* node) override {
        Material::exportClassToTree(node);
        node->addMember("name")->setAsString("special " + name);
    }
};

/// Writes nothing.
class Silent : public Exportable {
public:
    void exportClassToTree(Node*) override {}
    void importClassFromTree(Node*) override {}
};

TEST(JsonExporterTest, objectsWriteAndReadThemselves) {
    JsonExporter exporter;
    Material material;
    const String text = exporter.exportObjectIntoString(&material);
    EXPECT_EQ(text, "{\n    \"name\": \"gold\",\n    \"alphaValue\": 0.1\n}");
    const auto result = exporter.importIntoTree(text);
    ASSERT_TRUE(result);
    Material read;
    read.name.clear();
    read.alpha = 0;
    read.importClassFromTree(result._tree.get());
    EXPECT_EQ(read.name, material.name);
    EXPECT_EQ(read.alpha, material.alpha);

    exporter.setPretty(false);
    SpecialMaterial special;
    EXPECT_EQ(exporter.exportObjectIntoString(&special), R"({"name":"special gold","alphaValue":0.1})");
    Silent silent;
    EXPECT_EQ(exporter.exportObjectIntoString(&silent), "{}");
    EXPECT_EQ(exporter.exportObjectIntoString(nullptr), "");
}

TEST(JsonExporterTest, anEmptyResultHasNeitherTreeNorError) {
    const ExporterLoadResult result;
    EXPECT_FALSE(result);
    EXPECT_EQ(result._tree, nullptr);
    EXPECT_FALSE(result._error._activated);
    EXPECT_EQ(result._error._index, 0u);
    EXPECT_EQ(result._error._line, 0u);
}

} // namespace
