#include <ovVeldris/scripts/resourcesWrap/ResourceManagerWrapper.h>

#include "../support/Cases.h"

#include <filesystem>
#include <fstream>
#include <ovResources/ResourceManager.h>
#include <support/TemporaryFolder.h>

namespace {

constexpr const char* MANAGER = "local r = ovResources.ResourceManager.getInstance() return ";

ovMemory::String ask(ovVeldris::ScriptsEngine& engine, const ovMemory::String& text) {
    return luaTest::evaluate(*engine.getEnvironment(), MANAGER + text);
}

} // namespace

TEST(ResourceManagerWrapperTest, convertsPaths) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    ovResources::ResourceManager::getInstance()->setWorkingPath("assets");
    const ovMemory::String launched = std::filesystem::current_path().native() + "/";
    const struct {
        ovMemory::String text, expected;
    } cases[] = {
        {"r:isTheSingletonInstance()", "true"},
        {"r == ovResources.ResourceManager.getInstance()", "true"},
        {"r:getWorkingPath()", "assets/"},
        {"r:getWorkingPathAbsolute()", launched + "assets/"},
        {"r:getLaunchedPath()", launched},
        {"r:getRelativeFromAbsolute('" + launched + "a/b')", "a/b"},
        {"r:getAbsoluteFromRelative('a/../b')", launched + "b"},
        {"r:getRelativeFromWorkingDir('a.png')", "assets/a.png"},
        {"r:getAbsoluteFromWorkingDir('a.png')", launched + "assets/a.png"},
        {"r:getFromWorkingDirFromRelative('assets/a.png')", "a.png"},
        {"r:getFromWorkingDirFromAbsolute('" + launched + "assets/a.png')", "a.png"},
        {"r:getAbsoluteFromRelative(nil)",
         "error: test:1: ovResources.ResourceManager.getAbsoluteFromRelative: argument 2 (path) expected "
         "string, got "
         "nil"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(ask(engine, row.text), row.expected) << row.text;
    ovResources::ResourceManager::kill();
}

TEST(ResourceManagerWrapperTest, readsAndWritesFiles) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("bytes.bin");
    EXPECT_EQ(ask(engine, "r:checkFileExists('" + path + "')"), "false");
    EXPECT_EQ(ask(engine, "r:loadFileIntoMemory('" + path + "')"), "nil");
    EXPECT_EQ(ask(engine, "r:saveFileToDisk('" + path + "', ovMemory.Buffer.fromString('a\\0\\255'))"),
              "true");
    EXPECT_EQ(ask(engine, "r:checkFileExists('" + path + "')"), "true");
    EXPECT_EQ(ask(engine, "r:checkFolderExists('" + path + "')"), "false");
    EXPECT_EQ(std::filesystem::file_size(path), 3u);
    EXPECT_EQ(ask(engine, "r:loadFileIntoMemory('" + path + "'):getData(2)"), "255");
    EXPECT_EQ(ask(engine, "#r:loadFileIntoMemory('" + path + "')"), "3");
    EXPECT_EQ(ask(engine, "r:saveFileToDisk('" + path + "/x', ovMemory.Buffer.new(1))"), "false");
    std::ofstream(path).close();
    EXPECT_EQ(ask(engine, "r:loadFileIntoMemory('" + path + "')"), "nil") << "an empty file";
    ovResources::ResourceManager::kill();
}

TEST(ResourceManagerWrapperTest, scriptsDoNotOwnTheInstance) {
    {
        ovVeldris::ScriptsEngine engine(nullptr);
        engine.initialize();
        ask(engine, "r:getLaunchedPath()");
        luaTest::evaluate(*engine.getEnvironment(), "collectgarbage()");
        EXPECT_NE(ovResources::ResourceManager::getInstanceIfExisting(), nullptr);
    }
    EXPECT_NE(ovResources::ResourceManager::getInstanceIfExisting(), nullptr);
    ovResources::ResourceManager::kill();
}
