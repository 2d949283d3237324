#include <ovScripts/ScriptManager.h>

#include <fstream>
#include <support/TemporaryFolder.h>

using ovScripts::ScriptManager;

TEST(ScriptManagerTest, ownsScriptsByName) {
    ScriptManager manager;
    EXPECT_EQ(manager.get("a"), nullptr);
    EXPECT_EQ(manager.getByIndex(0), nullptr);
    ovScripts::Script* const second = manager.createOrRetrieve("b");
    ovScripts::Script* const first = manager.createOrRetrieve("a");
    EXPECT_EQ(manager.createOrRetrieve("b"), second);
    EXPECT_EQ(second->getName(), "b");
    EXPECT_EQ(second->getTargetInterpreter(), ovScripts::INTERPRETER::LUA);
    EXPECT_EQ(manager.getCount(), 2u);
    EXPECT_EQ(manager.getByIndex(0), first);
    EXPECT_EQ(manager.getByIndex(1), second);
    EXPECT_EQ(manager.getByIndex(2), nullptr);
    manager.erase("a");
    manager.erase("none");
    EXPECT_EQ(manager.getByIndex(0), second);
}

TEST(ScriptManagerTest, remembersTheFileOfATextUntilItIsAnother) {
    const TemporaryFolder folder;
    std::ofstream(folder.getPath("a.lua")) << "return 1";
    ScriptManager manager;
    EXPECT_EQ(manager.setFile("a", folder.getPath("a.lua")).error,
              "There is no script 'a' to give the file '" + folder.getPath("a.lua") + "'; create it first.");
    ovScripts::Script* const script = manager.createOrRetrieve("a");
    script->setSources("before");
    EXPECT_FALSE(manager.setFile("a", folder.getPath("b.lua")));
    EXPECT_EQ(script->getSources(), "before");
    ASSERT_TRUE(manager.setFile("a", folder.getPath("a.lua")));
    EXPECT_EQ(script->getSources(), "return 1");
    EXPECT_EQ(manager.getFile("a"), folder.getPath("a.lua"));
    script->setSources("return 2");
    EXPECT_EQ(manager.getFile("a"), "");
    EXPECT_EQ(manager.getFile("none"), "");
}
