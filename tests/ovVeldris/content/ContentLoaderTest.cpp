#include <ovVeldris/content/ContentLoader.h>

#include <fstream>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Shader.h>
#include <ovResources/ResourceManager.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/materials/TestMaterial.h>
#include <support/TemporaryFolder.h>
#include <sys/stat.h>
#include <type_traits>

using namespace ovVeldris;
using ovMemory::String;
using ovMemory::StringView;

namespace {

using Texts = ovMemory::Buffer<String>;

constexpr const char* NO_PARSING = "Material Declaration import error. Parsing error.";
constexpr const char* NO_ROOT = "Script Declaration import error. This is not an object nor an array.";
constexpr const char* NO_OBJECT = "Material Declaration entry not an object.";
constexpr const char* NO_NAME = "Material Declaration entry incomplete. There is no name field.";
constexpr const char* NO_TYPE = "Material Declaration entry incomplete. There is no type field.";
constexpr const char* NO_KNOWN_TYPE =
    "Material Declaration entry incomplete. Type field does not map to a known type.";
constexpr const char* NO_CREATION = "Failed Material creation in Manager.";

/// Works in a folder of its own.
class ContentLoaderTest : public EffectFixture {
protected:
    ContentLoaderTest() { ovResources::ResourceManager::getInstance()->setWorkingPath(folder.getPath()); }
    ~ContentLoaderTest() override { ovResources::ResourceManager::getInstance()->setWorkingPath(""); }

    void TearDown() override {
        while (Material* const material = materials().getByIndex(0))
            materials().erase(String(material->getName()));
        EffectFixture::TearDown();
    }

    MaterialManager& materials() { return *getSystem()->getMaterialManager(); }
    ContentLoader& loader() { return *getSystem()->getContentLoader(); }

    void write(StringView name, StringView content) {
        std::ofstream(folder.getPath(name), std::ios::binary) << content;
    }
    String read(StringView name) {
        std::ifstream file(folder.getPath(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// What is in the folder.
    Texts list() {
        Texts names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.getPath()))
            names.push_back(std::filesystem::relative(entry.path(), folder.getPath()).native());
        return names;
    }

    static Texts namesOf(const ContentLoader::Materials& result) {
        Texts names;
        for (const Material* material : result._results)
            names.push_back(String(material->getName()));
        return names;
    }
    static bool isLoaded(const Material& material) {
        return material.getShader() && !material.getShader()->isUnloaded();
    }

    TemporaryFolder folder;
};
INSTANTIATE_TEST_SUITE_P(, ContentLoaderTest, testing::Values(ovGraphics::SHADER_LANGUAGE::GLSL),
                         languageName);

/// What is logged about a text that is no JSON. The words are the reader's.
RecordingLogger::Messages parseFailure(StringView text) {
    const auto error = ovExport::JsonExporter().importIntoTree(text)._error;
    EXPECT_FALSE(error._errorDesc.empty());
    EXPECT_FALSE(error._errorInfo.empty());
    constexpr const char* SENDER = "ContentLoader::inputDataSources";
    return {{"", "-"},
            {"Object Declaration parse error :", SENDER},
            {error._errorDesc, SENDER},
            {"", "-"},
            {error._errorInfo, SENDER},
            {"", "-"}};
}

} // namespace

TEST_P(ContentLoaderTest, BelongsToItsSystemAlsoAsACopy) {
    System other;
    EXPECT_EQ(loader().getSystem(), getSystem());
    ContentLoader copy(&other);
    copy = loader();
    EXPECT_EQ(copy.getSystem(), getSystem());
    copy = ContentLoader(&other);
    EXPECT_EQ(copy.getSystem(), &other);
}

TEST_P(ContentLoaderTest, ReadsTreesOfFiles) {
    write("a.json", R"({"name": "gold"})");
    for (const String& path : {String("a.json"), String("./x/../a.json"), folder.getPath("a.json")}) {
        const auto result = loader().inputData(path);
        ASSERT_TRUE(result) << path;
        EXPECT_EQ(result._tree->getMemberValue("name")->getValueAsString(), "gold");
    }
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(ContentLoaderTest, TellsOfFilesThatCannotBeRead) {
    std::filesystem::create_directory(folder.getPath("folder"));
    ASSERT_EQ(mkfifo(folder.getPath("pipe").c_str(), 0600), 0);
    for (const char* name : {"none.json", "folder", "pipe", "none/none.json"}) {
        getLog().messages.clear();
        const auto result = loader().inputData(name);
        EXPECT_FALSE(result);
        EXPECT_FALSE(result._error._activated);
        EXPECT_EQ(getLog().messages,
                  (RecordingLogger::Messages{{"Can't find Object Declaration file " + folder.getPath(name),
                                              "ContentLoader::inputData"}}));
    }
}

TEST_P(ContentLoaderTest, ReadsBytesAsTheyAre) {
    const String bytes("a\0\r\n\xff\xfe", 6);
    write("bytes", bytes);
    write("empty", "");
    EXPECT_EQ(loader().inputDataStr("bytes"), bytes);
    EXPECT_EQ(loader().inputDataStr("empty"), "");
    EXPECT_EQ(loader().inputDataStr("none"), "");
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(ContentLoaderTest, LogsWhatIsNoJsonInSixEntries) {
    for (const char* text : {"", "{", "[1,]", "{\"name\": \"a\"} x", "\xff"}) {
        getLog().messages.clear();
        const auto result = loader().inputDataSources(text);
        EXPECT_FALSE(result) << text;
        EXPECT_FALSE(result._error._activated) << "an empty result, not the reader's";
        EXPECT_EQ(getLog().messages, parseFailure(text)) << text;
    }
    getLog().messages.clear();
    write("broken.json", "{\n\"a\": }");
    EXPECT_FALSE(loader().inputData("broken.json"));
    EXPECT_EQ(getLog().messages, parseFailure("{\n\"a\": }"));
}

TEST_P(ContentLoaderTest, WritesBehindTheTextOfTheWorkingFolder) {
    std::filesystem::create_directory(folder.getPath("sub"));
    const String bytes("a\0b\nc", 5);
    for (const char* path : {"file", "sub/file", "/file", "sub/../file"}) {
        std::filesystem::remove(folder.getPath("file"));
        EXPECT_TRUE(loader().outputData(bytes, path)) << path;
        EXPECT_EQ(read(path), bytes) << path;
    }
    EXPECT_TRUE(loader().outputData("", "file")) << "replaces";
    EXPECT_EQ(read("file"), "");
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(ContentLoaderTest, WritesInPlaceWhereAFileCannotBeReplaced) {
    write("one", "old");
    std::filesystem::create_hard_link(folder.getPath("one"), folder.getPath("two"));
    EXPECT_TRUE(loader().outputData("new", "one"));
    EXPECT_EQ(read("two"), "new");
    EXPECT_EQ(getLog().messages,
              (RecordingLogger::Messages{
                  {"File '" + folder.getPath("one") +
                       "' was written in place: it has 2 names; who reads it meanwhile may find a part.",
                   "ContentLoader"}}));
}

TEST_P(ContentLoaderTest, TellsOfFilesThatCannotBeWritten) {
    std::filesystem::create_directory(folder.getPath("folder"));
    const Texts before = list();
    for (const String& path : {String("none/file"), String("folder"), String(), folder.getPath("file")}) {
        getLog().messages.clear();
        EXPECT_FALSE(loader().outputData("text", path)) << path;
        EXPECT_EQ(getLog().messages,
                  (RecordingLogger::Messages{
                      {"Error when trying to open file saving : " + path, "ContentLoader"}}));
    }
    EXPECT_EQ(list(), before);
}

TEST_P(ContentLoaderTest, SavesTreesAndObjects) {
    const auto tree = ovExport::Node::create();
    tree->addMember("name")->setAsString("gold");
    EXPECT_TRUE(loader().saveTreeDeclaration(tree.get(), "tree.json"));
    EXPECT_EQ(read("tree.json"), ovExport::JsonExporter().exportTreeIntoString(tree.get()));
    EXPECT_EQ(loader().inputData("tree.json")._tree->getMemberValue("name")->getValueAsString(), "gold");

    PbsMaterial material(getSystem());
    material.setName("saved");
    material.setMetalness(0.25f);
    EXPECT_TRUE(loader().saveObjectDeclaration(&material, "material.json"));
    const auto result = loader().loadMaterialDeclaration("material.json", true);
    ASSERT_EQ(namesOf(result), Texts{"saved"});
    EXPECT_EQ(static_cast<PbsMaterial*>(result._results.front())->getMetalness(), 0.25f);

    getLog().messages.clear();
    EXPECT_FALSE(loader().saveTreeDeclaration(tree.get(), "none/tree.json"));
    EXPECT_FALSE(loader().saveObjectDeclaration(&material, "none/material.json"));
    EXPECT_EQ(getLog().messages.size(), 2u);
}

TEST_P(ContentLoaderTest, SavesNothingOfNull) {
    EXPECT_FALSE(loader().saveTreeDeclaration(nullptr, "tree.json"));
    EXPECT_FALSE(loader().saveObjectDeclaration(nullptr, "object.json"));
    EXPECT_EQ(list(), Texts());
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(ContentLoaderTest, AMissingFileOfMaterialsIsAnEmptyText) {
    for (const bool load : {false, true}) {
        getLog().messages.clear();
        const auto result = loader().loadMaterialDeclaration("none.json", load);
        EXPECT_EQ(result._errors, Texts{NO_PARSING});
        EXPECT_TRUE(result._results.empty());
        EXPECT_EQ(result._status, 2);
        EXPECT_EQ(getLog().messages, parseFailure(""));
    }
}

TEST_P(ContentLoaderTest, ProcessesTextsByTheirRoot) {
    struct Case {
        const char* text;
        Texts names;
        Texts errors;
        int32_t status;
    };
    const Case cases[] = {
        {"", {}, {NO_PARSING}, 2},
        {"{\"name\": \"a\", \"type\": \"PBS\"", {}, {NO_PARSING}, 2},
        {"\"text\"", {}, {NO_ROOT}, 2},
        {"1.5", {}, {NO_ROOT}, 2},
        {"true", {}, {NO_ROOT}, 2},
        {"null", {}, {NO_ROOT}, 2},
        {R"({"name": "a", "type": "PBS"})", {"a"}, {}, 0},
        {R"({"type": "PBS"})", {}, {NO_NAME}, 2},
        {"{}", {}, {NO_NAME}, 2},
        {R"({"name": 1, "type": "PBS"})", {}, {NO_NAME}, 2},
        {R"({"name": null, "type": "PBS"})", {}, {NO_NAME}, 2},
        {R"({"name": "a"})", {}, {NO_TYPE}, 2},
        {R"({"name": "a", "type": true})", {}, {NO_TYPE}, 2},
        {R"({"name": "a", "type": {}})", {}, {NO_TYPE}, 2},
        {R"({"name": "a", "type": "pbs"})", {}, {NO_KNOWN_TYPE}, 2},
        {R"({"name": "a", "type": ""})", {}, {NO_KNOWN_TYPE}, 2},
        {R"({"name": "a", "type": "UNKNOWN"})", {}, {NO_KNOWN_TYPE}, 2},
        {R"({"materials": [{"name": "a", "type": "PBS"}]})", {}, {NO_NAME}, 2},
        {"[]", {}, {}, 0},
        {R"([{"name": "a", "type": "PBS"}, {"type": "PBS"}, {"name": "b", "type": "PBS"}])",
         {"a", "b"},
         {NO_NAME},
         1},
        {R"([{"name": "a", "type": "PBS"}, {"name": "a", "type": "PBS"}])", {"a", "a"}, {}, 0},
        {R"([1, "a", null, [{"name": "a", "type": "PBS"}], {"name": "a"}, {"name": "a", "type": "x"}])",
         {},
         {NO_OBJECT, NO_OBJECT, NO_OBJECT, NO_OBJECT, NO_TYPE, NO_KNOWN_TYPE},
         1},
    };
    for (const Case& row : cases) {
        const auto result = loader().processMaterialSources(row.text, false);
        EXPECT_EQ(namesOf(result), row.names) << row.text;
        EXPECT_EQ(result._errors, row.errors) << row.text;
        EXPECT_EQ(result._details.size(), row.errors.size()) << row.text;
        EXPECT_EQ(result._status, row.status) << row.text;
    }
}

// Beside the errors, whose words are part of the interface.
TEST_P(ContentLoaderTest, DetailsNameTheEntry) {
    const auto details = [&](StringView text) {
        return loader().processMaterialSources(text, false)._details;
    };
    EXPECT_EQ(details(R"({"name": "a", "type": "x"})"), Texts{"'a' has the type 'x'; the types are PBS"});
    EXPECT_EQ(details(R"([{"name": "b", "type": "PBS"}, 7, {"name": "a", "type": "UNKNOWN"}])"),
              (Texts{"entry 2", "entry 3: 'a' has the type 'UNKNOWN'; the types are PBS"}));
    EXPECT_EQ(details("{}"), Texts{""});
    EXPECT_EQ(details("{"), Texts{""});
    EXPECT_EQ(details(R"({"name": "a", "type": "PBS"})"), Texts());
}

TEST_P(ContentLoaderTest, ProcessesNodes) {
    const auto array = ovExport::Node::create(ovExport::NODE_NATURE::ARRAY);
    for (ovExport::Node* const node : {array.get(), static_cast<ovExport::Node*>(nullptr)}) {
        const auto result = loader().processMaterialTree(node, true);
        EXPECT_EQ(result._errors, Texts{NO_OBJECT});
        EXPECT_EQ(result._status, 2);
    }
    const auto entry = ovExport::Node::create();
    entry->addMember("name")->setAsString("a");
    entry->addMember("type")->setAsString("PBS");
    entry->addMember("alphaValue")->setAsFloat(0.25f);
    const auto result = loader().processMaterialTree(entry.get(), false);
    ASSERT_EQ(result._results.size(), 1u);
    EXPECT_EQ(result._results.front(), materials().get("a"));
    EXPECT_EQ(static_cast<PbsMaterial*>(materials().get("a"))->getAlpha(), 0.25f);
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(ContentLoaderTest, FilesAreLoadedWhateverTheFlagSays) {
    write("a.json", R"([{"name": "a", "type": "PBS"}])");
    for (const bool load : {false, true}) {
        materials().erase("a");
        ASSERT_EQ(namesOf(loader().loadMaterialDeclaration("a.json", load)), Texts{"a"});
        EXPECT_TRUE(isLoaded(*materials().get("a")));
        materials().erase("a");
        ASSERT_EQ(namesOf(loader().processMaterialSources(read("a.json"), load)), Texts{"a"});
        EXPECT_EQ(isLoaded(*materials().get("a")), load);
    }
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages());
}

TEST_P(ContentLoaderTest, OverwritesAndReloadsWhatExists) {
    loader().processMaterialSources(R"({"name": "a", "type": "PBS", "metalnessValue": 0.125})", true);
    auto* const material = static_cast<PbsMaterial*>(materials().get("a"));
    const auto* const program = material->getShader()->getProgram();

    const char* const second =
        R"({"name": "a", "type": "PBS", "albedoTexture": {"name": "wood", "packing": "bgr"}})";
    const auto result = loader().processMaterialSources(second, true);
    ASSERT_EQ(result._results, ovMemory::Buffer<Material*>{material});
    EXPECT_EQ(material->getMetalness(), 0.125f) << "what the entry does not name stays";
    EXPECT_EQ(material->getAlbedoTexture(), getGraphics().getTextureManager()->get("wood"));
    EXPECT_TRUE(isLoaded(*material));
    EXPECT_NE(material->getShader()->getProgram(), program) << "built anew, with the texture";
    getGraphics().getTextureManager()->erase("wood");
}

TEST_P(ContentLoaderTest, ReloadsOnceAndOnlyWhenAsked) {
    auto recorded = std::make_unique<TestMaterial>(MATERIAL_TYPE::PBS);
    TestMaterial& material = *recorded;
    materials().record("a", std::move(recorded));
    loader().processMaterialSources(R"({"name": "a", "type": "PBS"})", false);
    EXPECT_EQ(material.calls, 0);
    loader().processMaterialSources(R"({"name": "a", "type": "PBS"})", true);
    EXPECT_EQ(material.calls, 2);
    EXPECT_EQ(material.getName(), "a") << "read from the entry";
}

TEST_P(ContentLoaderTest, TellsWhenTheManagerRefuses) {
    materials().record("a", std::make_unique<TestMaterial>(MATERIAL_TYPE::UNKNOWN));
    materials().get("a")->setName("a");
    const auto refused = loader().processMaterialSources(R"({"name": "a", "type": "PBS"})", true);
    EXPECT_EQ(refused._errors, Texts{NO_CREATION});
    EXPECT_EQ(refused._status, 2);
    EXPECT_EQ(getLog().messages.size(), 1u) << "the manager's own message";

    System notInitialised;
    const auto none =
        notInitialised.getContentLoader()->processMaterialSources(R"([{"name": "a", "type": "PBS"}])", true);
    EXPECT_EQ(none._errors, Texts{NO_CREATION});
    EXPECT_EQ(none._status, 1);
}

TEST_P(ContentLoaderTest, TellsOfAFailedLoadInTheLogOnly) {
    const auto result = loader().processMaterialSources(R"({"name": "a", "type": "PBS"})", false);
    static_cast<PbsMaterial*>(result._results.front())->setPositionAttributeName("no identifier");
    const auto again = loader().processMaterialSources(R"({"name": "a", "type": "PBS"})", true);
    EXPECT_EQ(again._status, 0);
    EXPECT_EQ(namesOf(again), Texts{"a"});
    EXPECT_TRUE(getLog().contains("Could not load the pbs material program for 'a'.")) << getLog().getText();
}

TEST(ContentLoadResultTest, IsEmptyAtFirstAndMovesAsAWhole) {
    ContentLoadResult<Material> result;
    EXPECT_TRUE(result._errors.empty());
    EXPECT_TRUE(result._results.empty());
    EXPECT_EQ(result._status, 0);
    static_assert(std::is_same_v<decltype(result._status), int32_t>);

    TestMaterial material(MATERIAL_TYPE::PBS);
    result = {{"a message that is too long to be kept within the string itself"}, {&material}, 1};
    const char* const characters = result._errors.front().data();
    const ContentLoadResult<Material> moved = std::move(result);
    EXPECT_EQ(moved._errors.front().data(), characters);
    EXPECT_EQ(moved._results, ovMemory::Buffer<Material*>{&material});
    EXPECT_EQ(moved._status, 1);
}
