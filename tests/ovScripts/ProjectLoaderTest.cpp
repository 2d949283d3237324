#include <ovScripts/ProjectLoader.h>

#include <fstream>
#include <iterator>
#include <ovScripts/ScriptManager.h>
#include <support/TemporaryFolder.h>

using namespace ovScripts;
using ovMemory::String;

namespace {

String bytesOf(const String& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

ProjectLoadResult read(ovMemory::StringView text, ScriptManager& manager) {
    return ProjectLoader::loadText(text, "/", "s", manager);
}

} // namespace

TEST(ScriptsProjectLoaderTest, namesTheFileByTheFirstDotOfTheWholePath) {
    EXPECT_EQ(ProjectLoader::getScriptsPath("projects/demo.proj"), "projects/demo_scripts.ovscripts");
    EXPECT_EQ(ProjectLoader::getScriptsPath("demo"), "demo_scripts.ovscripts");
    EXPECT_EQ(ProjectLoader::getScriptsPath("./demo.proj"), "_scripts.ovscripts");
    EXPECT_EQ(ProjectLoader::getScriptsPath("a.b/demo"), "a_scripts.ovscripts");
    EXPECT_EQ(ProjectLoader::getScriptsPath(""), "_scripts.ovscripts");
}

TEST(ScriptsProjectLoaderTest, givesBackEveryScriptAndSavesItAsTheSameBytes) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    for (const TemporaryFolder* place : {&folder, &elsewhere})
        std::ofstream(place->getPath("own.lua")) << "return 'own'";
    ScriptManager saved;
    saved.createOrRetrieve("zero")->setSources(String("return '\"\\\n\t\0 \xC3\xA9'", 17));
    saved.createOrRetrieve("unknown")->setTargetInterpreter(INTERPRETER::UNKNOWN);
    saved.createOrRetrieve("own");
    ASSERT_TRUE(saved.setFile("own", folder.getPath("own.lua")));
    saved.createOrRetrieve("other");
    ASSERT_TRUE(saved.setFile("other", elsewhere.getPath("own.lua")));
    const ovMemory::Result written = ProjectLoader::save({folder.getPath("x.ovs"), &saved});
    ASSERT_TRUE(written) << written.error;
    const String path = folder.getPath("x_scripts.ovscripts");
    const String bytes = bytesOf(path);
    EXPECT_NE(bytes.find("\"file\": \"own.lua\""), String::npos) << bytes;

    ScriptManager loaded;
    const ProjectLoadResult result = ProjectLoader::load({path, &loaded});
    ASSERT_EQ(result._scripts.size(), 4u);
    ASSERT_EQ(result._errors.size(), 1u) << "only the language is missing";
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_EQ(loaded.getByIndex(i)->getSources(), saved.getByIndex(i)->getSources());
        EXPECT_EQ(loaded.getByIndex(i)->getTargetInterpreter(), saved.getByIndex(i)->getTargetInterpreter());
    }
    EXPECT_TRUE(loaded.get("own")->isLoaded());
    ASSERT_TRUE(ProjectLoader::save({folder.getPath("x.ovs"), &loaded}));
    EXPECT_EQ(bytesOf(path), bytes);
}

TEST(ScriptsProjectLoaderTest, savesNoTextThatJsonCannotHold) {
    const TemporaryFolder folder;
    ScriptManager manager;
    manager.createOrRetrieve("a")->setSources("return '\xFF'");
    EXPECT_EQ(ProjectLoader::save({folder.getPath("x"), &manager}).error,
              "Could not save the scripts to '" + folder.getPath("x_scripts.ovscripts") +
                  "': the text of the script 'a' is no UTF-8; keep it in a file inside the project's folder "
                  "(ScriptManager::setFile).");
    EXPECT_FALSE(std::filesystem::exists(folder.getPath("x_scripts.ovscripts")));
    EXPECT_FALSE(ProjectLoader::save({folder.getPath("none/x"), &manager}));
}

TEST(ScriptsProjectLoaderTest, saysWhatIsWrongWithEachEntry) {
    const std::pair<const char*, const char*> CASES[] = {
        {"{}", ""},
        {R"({"scripts": []})", ""},
        {"[]", "s:1: this is no object with an array \"scripts\"."},
        {R"({"scripts": {}})", "s:1: this is no object with an array \"scripts\"."},
        {R"({"scripts": [3]})", "s:1: a script has no \"name\"; give it a text."},
        {R"({"scripts": [{"name": 3}]})", "s:1: a script has no \"name\"; give it a text."},
        {R"({"scripts": [{"name": "a", "source": ""},
            {"name": "a", "source": ""}]})",
         "s:2: script 'a': the name is given twice; this entry is left out."},
        {R"({"scripts": [{"name": "a", "source": "", "interpreter": "lua"}]})",
         "s:1: script 'a': \"interpreter\" is not UNKNOWN or LUA."},
        {R"({"scripts": [{"name": "a", "source": "", "file": "a"}]})",
         "s:1: script 'a': it has a \"source\" and a \"file\"; take one away."},
        {R"({"scripts": [{"name": "a", "source": 1}]})",
         "s:1: script 'a': it has neither the text \"source\" nor the text \"file\"."},
        {R"({"scripts": [{"name": "a", "file": "../a.lua"}]})",
         "s:1: script 'a': the file '../a.lua' does not lie inside the folder of the project; copy it "
         "there."},
        {R"({"scripts": [{"name": "a", "source": "\u001bLua"}]})",
         "s:1: script 'a': Script 'a' is compiled already: give its text"},
    };
    for (const auto& [text, expected] : CASES) {
        ScriptManager manager;
        const ProjectLoadResult result = read(text, manager);
        String errors;
        for (const String& error : result._errors)
            errors += error;
        EXPECT_EQ(errors, expected) << text;
    }
}

TEST(ScriptsProjectLoaderTest, givesOutScriptsThatDoNotCompile) {
    ScriptManager manager;
    const ProjectLoadResult result = read(R"({"scripts": [{"name": "a", "source": "x ="}]})", manager);
    ASSERT_EQ(result._scripts.size(), 1u);
    ASSERT_EQ(result._errors.size(), 1u);
    EXPECT_EQ(result._errors.front().rfind("s:1: script 'a': a:1: ", 0), 0u) << result._errors.front();
    EXPECT_FALSE(result._scripts.front()->isLoaded());
}

TEST(ScriptsProjectLoaderTest, leavesNothingOfAFileThatIsNotThere) {
    ScriptManager manager;
    EXPECT_EQ(read(R"({"scripts": [{"name": "a", "file": "none such.lua"}]})", manager)._errors.size(), 1u);
    EXPECT_EQ(manager.getCount(), 0u);
    const ProjectLoadResult result = ProjectLoader::load({"/none such", &manager});
    EXPECT_EQ(result._errors.size(), 1u);
}

TEST(ScriptsProjectLoaderTest, survivesTextsThatAreCutAnywhere) {
    const String text = R"({"scripts": [{"name": "a", "source": "return 1", "interpreter": "LUA"}]})";
    for (std::size_t size = 0; size < text.size(); ++size) {
        ScriptManager manager;
        EXPECT_EQ(read({text.data(), size}, manager)._errors.size(), 1u) << size;
        EXPECT_EQ(manager.getCount(), 0u);
    }
}
