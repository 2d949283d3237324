#include <veldris/materials/DeclarationCheck.h>

#include <fstream>
#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

using namespace veldris;
using ovMemory::String;

namespace {

using Lines = ovMemory::Buffer<String>;

Lines problemsOf(const DeclarationFile& file) {
    Lines lines;
    for (const DeclarationProblem& problem : file.problems)
        lines.push_back(toText("f", problem));
    return lines;
}

Lines check(const String& text) {
    return problemsOf(checkDeclarations(text));
}

/// The problems of an entry with these members, "f:1: material "a": " left out.
Lines checkMembers(const String& members) {
    Lines lines = check(R"({"name": "a", "type": "PBS", )" + members + "}");
    const String prefix = R"(f:1: material "a": )";
    for (String& line : lines) {
        EXPECT_TRUE(line.starts_with(prefix)) << line;
        line.erase(0, prefix.size());
    }
    return lines;
}

} // namespace

TEST(DeclarationCheckTest, problemsHavePlaces) {
    EXPECT_EQ(toText("a.json", {12, "what."}), "a.json:12: what.");
    EXPECT_EQ(toText("a.json", {0, "what."}), "a.json: what.");
}

TEST(DeclarationCheckTest, acceptsSoundFiles) {
    const String entry = R"~({"name": "a", "type": "PBS", "albedoColor": "Vec(0.5, 0.5, 0.5, 0)",)~"
                         R"("metalnessTexture": {"name": "t", "packing": "g"}, "alphaValue": 1,)"
                         R"("normalMap": {"name": "n", "packing": "abr"}, "pbsModel": "specular-glossiness",)"
                         R"("reconstructBinormals": false, "normalAttributeName": "NORMAL2",)"
                         R"("specularTexture": {"name": "s"}, "mixSpecularColorAndTexture": true,)"
                         R"~("specularColor": "Vec(2, 2, 2, 0)", "environmentColor": "Vec(1,1,1,1)",)~"
                         R"("environmentTexture": {"name": "e"}})";
    const std::pair<String, std::size_t> cases[] = {{entry, 1},
                                                    {"[" + entry + "]", 1},
                                                    {R"({"materials": [)" + entry + "]}", 1},
                                                    {"[]", 0},
                                                    {R"({"materials": []})", 0}};
    for (const auto& [text, entries] : cases) {
        const DeclarationFile file = checkDeclarations(text);
        EXPECT_EQ(problemsOf(file), Lines()) << text;
        EXPECT_EQ(file.entries.size(), entries) << text;
    }
}

TEST(DeclarationCheckTest, checksTheRoot) {
    const String expected = "; materials are an object, an array of objects, or {\"materials\": [...]}.";
    const std::pair<const char*, Lines> cases[] = {
        {"1", {"f:1: the file holds a number" + expected}},
        {"\n\"a\"", {"f:2: the file holds a string" + expected}},
        {"null", {"f:1: the file holds null" + expected}},
        {"false", {"f:1: the file holds a bool" + expected}},
        {R"({"materials": {}})", {"f:1: \"materials\" is an object, not an array of materials."}},
        {R"({"materials": [], "Materials": 1})",
         {"f:1: there is no member \"Materials\"; did you mean \"materials\"?"}},
        {"[1,\n[],\nnull]",
         {"f:1: material number 1 is a number, not an object.",
          "f:2: material number 2 is an array, not an object.",
          "f:3: material number 3 is null, not an object."}},
    };
    for (const auto& [text, problems] : cases)
        EXPECT_EQ(check(text), problems) << text;
}

TEST(DeclarationCheckTest, tellsWhereTheTextIsNoJson) {
    const DeclarationFile file = checkDeclarations("[\n{\"name\": }]");
    ASSERT_EQ(file.problems.size(), 1u);
    EXPECT_EQ(file.problems.front().line, 2u);
    EXPECT_TRUE(file.problems.front().message.starts_with("column 10: ")) << file.problems.front().message;
    EXPECT_EQ(file.tree, nullptr);
    EXPECT_TRUE(file.entries.empty());
    EXPECT_EQ(checkDeclarations("").problems.size(), 1u);
}

TEST(DeclarationCheckTest, checksNamesAndTypes) {
    const std::pair<const char*, Lines> cases[] = {
        {"{}",
         {"f:1: the material: there is no \"name\"; the material is not loaded.",
          "f:1: the material: there is no \"type\"; the material is not loaded."}},
        {"[{\"name\": \"a\"},\n {\"type\": \"PBS\"}]",
         {"f:1: material \"a\": there is no \"type\"; the material is not loaded.",
          "f:2: material number 2: there is no \"name\"; the material is not loaded."}},
        {"{\"name\": 1,\n\"type\": null}",
         {"f:1: the material: \"name\" is a number, not a string; the material is not loaded.",
          "f:2: the material: \"type\" is null, not a string; the material is not loaded."}},
        {R"({"name": "", "type": "pbs"})",
         {"f:1: material \"\": the name is empty.",
          "f:1: material \"\": the type \"pbs\" is unknown; it is \"PBS\"."}},
        {"[{\"name\": \"a\", \"type\": \"PBS\"},\n{\"name\": \"b\", \"type\": \"PBS\"},\n"
         "{\"name\": \"a\", \"type\": \"PBS\"}]",
         {"f:3: material \"a\": the name is that of the material in line 1, which this one overwrites."}},
        {R"({"name": "a\nb", "type": "PBS", "x": 1})", {"f:1: material \"a?b\": there is no member \"x\"."}},
    };
    for (const auto& [text, problems] : cases)
        EXPECT_EQ(check(text), problems) << text;
}

TEST(DeclarationCheckTest, checksMembers) {
    const String vector = "not four finite numbers as \"Vec(0.5, 0.5, 0.5, 0)\"; it is ignored.";
    const std::pair<const char*, Lines> cases[] = {
        {R"("albedoColour": 1)", {"there is no member \"albedoColour\"; did you mean \"albedoColor\"?"}},
        {R"("shininess": 1)", {"there is no member \"shininess\"."}},
        {R"("alphaValue": 1, "alphaValue": 2)", {"\"alphaValue\" is given again; the first one counts."}},
        {R"("x": 1, "x": 2)", {"there is no member \"x\".", "\"x\" is given again; the first one counts."}},

        {R"("lightColor": 1)",
         {"\"lightColor\" is a number, not a string as \"Vec(0.5, 0.5, 0.5, 0)\"; it is ignored."}},
        {R"("lightColor": "white")", {"\"lightColor\" is \"white\", " + vector}},
        {R"~("lightColor": "Vec(1, 2, 3)")~", {"\"lightColor\" is \"Vec(1, 2, 3)\", " + vector}},
        {R"~("lightColor": "Vec(nan, 2, 3, 4)")~", {"\"lightColor\" is \"Vec(nan, 2, 3, 4)\", " + vector}},
        {R"~("albedoColor": "Vec(0, -1, 0, 0)")~",
         {"\"albedoColor\" is \"Vec(0, -1, 0, 0)\": light and reflectance are not negative."}},
        {R"~("lightDirection": "Vec(0, -0, 0, 1)")~", {"\"lightDirection\" has no length; a direction has."}},
        {R"~("lightDirection": "Vec(0, -1, 0, 0)")~", {}},
        {R"~("lightDirection": "Vec(0, 0, 0.25, 0)")~", {}},
        {R"~("lightDirection": "Vec(-2, 0, 0, 0)")~", {}},

        {R"("metalnessValue": "0.5")", {"\"metalnessValue\" is a string, not a number; it is ignored."}},
        {R"("metalnessValue": -0.1)", {"\"metalnessValue\" is -0.1, not between 0 and 1."}},
        {R"("roughnessGlossinessValue": 2)", {"\"roughnessGlossinessValue\" is 2, not between 0 and 1."}},
        {R"("alphaValue": 1e300)", {"\"alphaValue\" is 1e+300, not between 0 and 1."}},
        {R"("alphaCutoff": 1.5)", {"\"alphaCutoff\" is 1.5, not between 0 and 1."}},
        {R"("alphaCutoff": 0, "alphaValue": 1.0)", {}},
        {R"("alphaValue": "NaN")", {"\"alphaValue\" is a string, not a number; it is ignored."}},

        {R"("reconstructBinormals": 1)",
         {"\"reconstructBinormals\" is a number, not true or false; it is ignored."}},
        {R"("environmentTextureIsCubeByDefault": "false")",
         {"\"environmentTextureIsCubeByDefault\" is a string, not true or false; it is ignored."}},
        {R"("pbsModel": true)", {"\"pbsModel\" is a bool, not a string; it is ignored."}},
        {R"("pbsModel": "glossiness")",
         {"\"pbsModel\" is \"glossiness\", not \"metalness-roughness\" or \"specular-glossiness\"; it "
          "is "
          "ignored."}},
        {R"("normalAttributeName": null)", {"\"normalAttributeName\" is null, not a string; it is ignored."}},
        {R"("normalAttributeName": "1st")",
         {"\"normalAttributeName\" is \"1st\", which is no identifier (letters, digits and _, no digit "
          "first); "
          "it is ignored."}},
    };
    for (const auto& [members, problems] : cases)
        EXPECT_EQ(checkMembers(members), problems) << members;
}

TEST(DeclarationCheckTest, checksTextures) {
    const std::pair<const char*, Lines> cases[] = {
        {R"("albedoTexture": "t.png")",
         {R"("albedoTexture" is a string, not an object {"name": ..., "packing": ...}; it is ignored.)"}},
        {R"("albedoTexture": {})", {"\"albedoTexture\": there is no \"name\" of a texture; none is set."}},
        {R"("albedoTexture": {"name": 1, "packing": []})",
         {"\"albedoTexture\": \"name\" is a number, not a string; it is ignored.",
          "\"albedoTexture\": \"packing\" is an array, not a string; it is ignored."}},
        {R"("albedoTexture": {"name": "", "pack": "rgb"})",
         {"\"albedoTexture\": the name is empty.",
          "\"albedoTexture\": there is no member \"pack\"; did you mean \"packing\"?"}},
        {R"("albedoTexture": {"name": "t", "packing": "RGB"})",
         {"\"albedoTexture\": the packing \"RGB\" is not three different letters of r, g, b and a; it is "
          "read "
          "as \"rgb\"."}},
        {R"("normalMap": {"name": "t", "packing": "rrg"})",
         {"\"normalMap\": the packing \"rrg\" is not three different letters of r, g, b and a; it is read as "
          "\"rgb\"."}},
        {R"("alphaTexture": {"name": "t", "packing": "rgb"})",
         {"\"alphaTexture\": the packing \"rgb\" is not r, g, b or a; it is read as \"a\"."}},
        {R"("occlusionTexture": {"name": "t", "packing": ""})",
         {"\"occlusionTexture\": the packing \"\" is not r, g, b or a; it is read as \"a\"."}},
        {R"("occlusionTexture": {"name": "t", "packing": "a"})", {}},
    };
    for (const auto& [members, problems] : cases)
        EXPECT_EQ(checkMembers(members), problems) << members;
}

TEST(DeclarationCheckTest, tellsOfReplacedColorsAndNumbers) {
    struct Case {
        const char* member;
        const char* value;
        const char* texture;
        const char* mix;
    };
    const Case cases[] = {
        {"albedoColor", "\"Vec(0,0,0,0)\"", "albedoTexture", "mixAlbedoColorAndTexture"},
        {"specularColor", "\"Vec(0,0,0,0)\"", "specularTexture", "mixSpecularColorAndTexture"},
        {"emissiveColor", "\"Vec(0,0,0,0)\"", "emissiveTexture", "mixEmissiveColorAndTexture"},
        {"environmentColor", "\"Vec(0,0,0,0)\"", "environmentTexture", "mixEnvironmentColorAndTexture"},
        {"metalnessValue", "0", "metalnessTexture", "mixMetalnessFactorAndTexture"},
        {"roughnessGlossinessValue", "0", "roughnessGlossinessTexture",
         "mixRoughnessGlossinessFactorAndTexture"},
        {"alphaValue", "0", "alphaTexture", "mixAlphaFactorAndTexture"},
    };
    for (const Case& row : cases) {
        const String members = String("\"irradianceTexture\": {\"name\": \"i\"}, \"") + row.member +
                               "\": " + row.value + ", \"" + row.texture + "\": {\"name\": \"t\"}";
        EXPECT_EQ(checkMembers(members),
                  (Lines{String("\"") + row.member + "\" is not used: \"" + row.texture +
                         "\" replaces it; remove one, or multiply both with \"" + row.mix + "\": true."}));
        EXPECT_EQ(checkMembers(members + ", \"" + row.mix + "\": true"), Lines());
    }
    EXPECT_EQ(checkMembers(R"~("environmentColor": "Vec(0,0,0,0)", "environmentTexture": {"name": "e"})~"),
              Lines())
        << "without an irradiance texture the colour is the irradiance";
}

TEST(DeclarationCheckTest, ordersProblemsAndCountsLines) {
    const DeclarationFile file =
        checkDeclarations("{\"materials\":\n[{\"name\": \"a\",\r\n\"type\": \"PBS\",\n"
                          "\"x\": 1,\n\"metalnessValue\": 7},\n\n{\"name\": \"b\"}],\n"
                          "\"y\": 1}");
    EXPECT_EQ(problemsOf(file),
              (Lines{"f:4: material \"a\": there is no member \"x\".",
                     "f:5: material \"a\": \"metalnessValue\" is 7, not between 0 and 1.",
                     "f:7: material \"b\": there is no \"type\"; the material is not loaded.",
                     "f:8: there is no member \"y\"."}));
    ASSERT_EQ(file.entries.size(), 2u);
    EXPECT_EQ(file.entries[0].line, 2u);
    EXPECT_EQ(file.entries[1].line, 7u);
}

TEST(DeclarationCheckTest, cutsLongTextsBetweenCharacters) {
    String longName;
    for (int i = 0; i < 50; ++i)
        longName += "\xc3\xa4"; // two bytes
    const String cut = longName.substr(0, 60);
    EXPECT_EQ(checkMembers("\"" + longName + "\": 1"), Lines{"there is no member \"" + cut + "...\"."});
    EXPECT_EQ(checkMembers("\"x" + longName + "\": 1"),
              Lines{"there is no member \"x" + longName.substr(0, 58) + "...\"."});
}

TEST(DeclarationCheckTest, readsFiles) {
    const TemporaryFolder folder;
    const String path = folder.getPath("a.json");
    std::ofstream(path) << "[\n1]";
    DeclarationFile file;
    String error;
    ASSERT_TRUE(checkDeclarationFile(path, file, error)) << error;
    EXPECT_EQ(problemsOf(file), Lines{"f:2: material number 1 is a number, not an object."});
    EXPECT_FALSE(checkDeclarationFile(folder.getPath("none"), file, error));
    EXPECT_NE(error.find(folder.getPath("none")), String::npos) << error;
}
