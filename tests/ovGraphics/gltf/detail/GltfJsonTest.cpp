#include <gtest/gtest.h>
#include <ovGraphics/gltf/detail/GltfJson.h>
#include <string>

using namespace ovGraphics::detail;
using ovMaths::Vector;

namespace {

class GltfJsonTest : public testing::Test {
protected:
    GltfObject parse(const std::string& text) {
        ovMemory::String error;
        _tree = parseGltfJson(text, error);
        EXPECT_TRUE(_tree) << error;
        return {GltfJson(_tree.get()), "thing 1", _report};
    }

    GltfReport _report{1000};
    ovMemory::UniquePtr<ovExport::Node> _tree;
};

} // namespace

TEST_F(GltfJsonTest, readsValuesThatAreThere) {
    const GltfJson json =
        parse(R"({"n": 1.5, "i": 7, "s": "aä", "t": true, "a": [1, [2]], "o": {"x": 3}, "e": 3.0})")
            .getJson();
    EXPECT_EQ(json["n"].getNumber(), 1.5);
    EXPECT_EQ(json["i"].getSize(), 7u);
    EXPECT_EQ(json["e"].getSize(), 3u);
    EXPECT_EQ(json["s"].getString(), "aä");
    EXPECT_TRUE(json["t"].isTrue());
    EXPECT_EQ(json["a"].getCount(), 2u);
    EXPECT_EQ(json["a"].at(1).at(0).getNumber(), 2.0);
    EXPECT_EQ(json["o"]["x"].getNumber(), 3.0);
    EXPECT_TRUE(json["o"].isObject());
    EXPECT_EQ(json["o"].getNames(), ovMemory::Buffer<ovMemory::StringView>({"x"}));
}

TEST_F(GltfJsonTest, readsWhatIsMissingOrOfAnotherKindAsNothing) {
    const GltfJson json =
        parse(R"({"n": -1, "h": 0.5, "big": 1e300, "s": "x", "a": [], "null": null})").getJson();
    EXPECT_FALSE(json["none"].exists());
    EXPECT_FALSE(json["none"]["deeper"].at(3)["still"].exists());
    EXPECT_TRUE(json["null"].exists());
    for (const char* name : {"n", "h", "big", "s", "a", "null"})
        EXPECT_FALSE(json[name].getSize()) << name;
    EXPECT_FALSE(json["s"].getNumber());
    EXPECT_FALSE(json["n"].getString());
    EXPECT_FALSE(json["n"].isTrue());
    EXPECT_FALSE(json["s"].isObject());
    EXPECT_EQ(json["s"].getCount(), 0u);
    EXPECT_FALSE(json["a"].at(0).exists());
    EXPECT_TRUE(json["a"].getNames().empty());
}

TEST_F(GltfJsonTest, looksAtTheFirstMembersOnly) {
    std::string text = "{";
    for (int i = 0; i < 2000; ++i)
        text += (i > 0 ? ",\"m" : "\"m") + std::to_string(i) + "\":" + std::to_string(i);
    const GltfJson json = parse(text + "}").getJson();
    EXPECT_TRUE(json["m1023"].exists());
    EXPECT_FALSE(json["m1024"].exists());
    EXPECT_EQ(json.getNames().size(), 1024u);
}

TEST_F(GltfJsonTest, readsIndices) {
    const GltfObject object = parse(R"({"good": 2, "high": 3, "text": "2", "negative": -1, "list": [0, 2, 1],
                                        "highList": [0, 3], "textList": ["0"]})");
    int index = -1;
    EXPECT_TRUE(object.readIndex("none", 3, "wheels", index));
    EXPECT_EQ(index, -1);
    EXPECT_TRUE(object.readIndex("good", 3, "wheels", index));
    EXPECT_EQ(index, 2);
    ovMemory::Buffer<unsigned int> indices;
    EXPECT_TRUE(object.readIndices("none", 3, "wheels", indices));
    EXPECT_TRUE(object.readIndices("list", 3, "wheels", indices));
    EXPECT_EQ(indices, ovMemory::Buffer<unsigned int>({0, 2, 1}));
    EXPECT_EQ(_report.getError(), "");
    struct Case {
        const char* name;
        bool list;
        const char* error;
    };
    const Case cases[] = {
        {"high", false, "thing 1: 'high' is 3, but the file has 3 wheels"},
        {"text", false, "thing 1: 'text' is no index"},
        {"negative", false, "thing 1: 'negative' is no index"},
        {"highList", true, "thing 1: element 1 of 'highList' is 3, but the file has 3 wheels"},
        {"textList", true, "thing 1: element 0 of 'textList' is no index, but the file has 3 wheels"},
    };
    for (const Case& row : cases) {
        GltfReport report(0);
        const GltfObject own(object.getJson(), object.getLabel(), report);
        EXPECT_FALSE(row.list ? own.readIndices(row.name, 3, "wheels", indices)
                              : own.readIndex(row.name, 3, "wheels", index));
        EXPECT_EQ(report.getError(), row.error);
    }
    EXPECT_EQ(index, 2);
}

TEST_F(GltfJsonTest, readsNumbersWithinTheirRange) {
    const GltfObject object = parse(R"({"good": 0.25, "high": 7, "huge": 1e300, "text": "1", "v": [1, 2, 3],
                                        "vHigh": [0, 9, 0], "vShort": [1], "vText": [1, "2", 3]})");
    EXPECT_EQ(object.readFloat("none", 0.5f, 0, 1), 0.5f);
    EXPECT_EQ(object.readFloat("good", 0.5f, 0, 1), 0.25f);
    EXPECT_EQ(object.readVector("none", 3, {4, 5, 6, 7}, 0, 5), Vector(4, 5, 6, 7));
    EXPECT_EQ(object.readVector("v", 3, {4, 5, 6, 7}, 0, 5), Vector(1, 2, 3, 7));
    EXPECT_TRUE(_report.takeWarnings().empty());
    EXPECT_EQ(object.readFloat("high", 0.5f, 0, 1), 1.0f);
    EXPECT_EQ(object.readFloat("huge", 0.5f, 0, 3.402823466e+38f), 3.402823466e+38f);
    EXPECT_EQ(object.readFloat("text", 0.5f, 0, 1), 0.5f);
    EXPECT_EQ(object.readVector("vHigh", 3, {}, 0, 5), Vector(0, 5, 0));
    EXPECT_EQ(object.readVector("vShort", 3, {4, 4, 4}, 0, 5), Vector(4, 4, 4));
    EXPECT_EQ(object.readVector("vText", 3, {4, 4, 4}, 0, 5), Vector(4, 4, 4));
    const ovMemory::Buffer<ovMemory::String> warnings = _report.takeWarnings();
    ASSERT_EQ(warnings.size(), 6u);
    EXPECT_EQ(warnings[0], "thing 1: 'high' is 7; 1 is taken instead");
    EXPECT_EQ(warnings[2], "thing 1: 'text' is no number; 0.5 is taken instead");
    EXPECT_EQ(warnings[3], "thing 1: element 1 of 'vHigh' is 9; 5 is taken instead");
    EXPECT_EQ(warnings[4], "thing 1: 'vShort' is no array of 3 numbers; its default is taken instead");
}

TEST_F(GltfJsonTest, readsSizesAndEnumerations) {
    const GltfObject object = parse(R"({"size": 9007199254740992, "half": 0.5, "beyond": 1e17, "mode": 4})");
    std::size_t size = 11;
    EXPECT_TRUE(object.readSize("none", size));
    EXPECT_EQ(size, 11u);
    EXPECT_TRUE(object.readSize("size", size));
    EXPECT_EQ(size, 9007199254740992u);
    EXPECT_EQ(object.readEnum("mode", 7), 4u);
    EXPECT_EQ(object.readEnum("none", 7), 7u);
    EXPECT_EQ(object.readEnum("half", 7), 7u);
    EXPECT_EQ(object.readEnum("size", 7), 7u);
    EXPECT_FALSE(object.readSize("beyond", size));
    EXPECT_EQ(_report.getError(), "thing 1: 'beyond' is no whole number from 0 to 2^53");
}

TEST_F(GltfJsonTest, namesObjectsInMessages) {
    const GltfObject object =
        parse(R"({"things": [{"name": "A"}, 5], "part": {"extensions": {"X": {"y": 1}}}})");
    EXPECT_EQ(getGltfObject(object.getJson()["things"], "thing", 0, _report).getLabel(), "thing 0 \"A\"");
    EXPECT_EQ(getGltfObject(object.getJson()["things"], "thing", 1, _report).getLabel(), "thing 1");
    const GltfObject extension = object.getObject("part").getExtension("X");
    EXPECT_EQ(extension.getLabel(), "thing 1, part, X");
    EXPECT_EQ(extension.readEnum("y", 0), 1u);
    EXPECT_FALSE(object.getObject("things").getJson().exists());
    EXPECT_FALSE(object.getObject("part").getExtension("Y").getJson().exists());
}

TEST(GltfJsonParseTest, refusesWhatIsNoObjectInUtf8) {
    struct Case {
        std::string text;
        const char* error; ///< how it begins
    };
    const Case cases[] = {
        {"", "the JSON is not valid: "},
        {"{\n\"a\": }", "the JSON is not valid: line 2, column 6"},
        {"{} x", "the JSON is not valid: line 1, column 4"},
        {"{\"a\": 1e999}", "the JSON is not valid: "},
        {"{\"a\": \"\xff\"}", "the JSON is not valid: "},
        {"[]", "the JSON is no object, so this is no glTF file"},
    };
    for (const Case& row : cases) {
        ovMemory::String error;
        EXPECT_FALSE(parseGltfJson(row.text, error)) << row.text;
        EXPECT_EQ(error.rfind(row.error, 0), 0u) << error;
    }
}

TEST(GltfJsonParseTest, standsAnyDepth) {
    for (const std::size_t depth : {90000u, 1000000u}) {
        const std::string text = "{\"extras\": " + std::string(depth, '[') + std::string(depth, ']') + "}";
        ovMemory::String error;
        EXPECT_EQ(bool(parseGltfJson(text, error)), depth < 100000) << error;
        EXPECT_FALSE(parseGltfJson(text.substr(0, depth), error));
    }
}
