#include <ovScripts/Script.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::luaEnvironment;
using luaTest::scriptOf;

TEST(ScriptTest, compilesOnceAndRunsAnywhere) {
    const Script script = scriptOf("n = (n or 0) + 1");
    ASSERT_TRUE(script.isLoaded());
    EXPECT_TRUE(script.getLastCompilationResult()._success);
    const auto first = luaEnvironment();
    const auto second = luaEnvironment();
    EXPECT_TRUE(first->execute(script));
    EXPECT_TRUE(first->execute(script));
    EXPECT_TRUE(second->execute(script));
    EXPECT_EQ(luaTest::evaluate(*first, "return n"), "2");
    EXPECT_EQ(luaTest::evaluate(*second, "return n"), "1");
}

TEST(ScriptTest, syntaxErrorsSayScriptAndLine) {
    const Script script = scriptOf("local a = 1\nlocal = 2", "demo.lua");
    EXPECT_FALSE(script.isLoaded());
    const CompilationResult& result = script.getLastCompilationResult();
    EXPECT_FALSE(result._success);
    EXPECT_EQ(result._failureType, COMPILATION_FAILURE_TYPE::SYNTAX);
    EXPECT_EQ(result._failureMessage, "demo.lua:2: <name> expected near '='");
}

TEST(ScriptTest, aScriptWithoutLanguageIsRefused) {
    Script script;
    script.setName("x");
    script.setSources("return 1");
    EXPECT_FALSE(script.load());
    EXPECT_EQ(script.getLastCompilationResult()._failureType, COMPILATION_FAILURE_TYPE::INTERPRETER_UNKNOWN);
    EXPECT_NE(script.getLastCompilationResult()._failureMessage.find("'x'"), std::string::npos);
}

TEST(ScriptTest, compiledTextsAreRefused) {
    const Script honest = scriptOf("return 1");
    const auto bytes = honest.getBytecode();
    const ovMemory::StringView compiled(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    // Whole, cut, behind what is skipped.
    for (const ovMemory::String& sources :
         {ovMemory::String(compiled), ovMemory::String(compiled.substr(0, 20)),
          "\xEF\xBB\xBF" + ovMemory::String(compiled), ovMemory::String("\x1b")}) {
        const Script script = scriptOf(sources);
        EXPECT_FALSE(script.isLoaded());
        EXPECT_EQ(script.getLastCompilationResult()._failureType, COMPILATION_FAILURE_TYPE::SYNTAX);
    }
    EXPECT_FALSE(scriptOf("#!shell\n" + ovMemory::String(compiled)).isLoaded());
}

TEST(ScriptTest, theShellsLineIsSkippedAndCounted) {
    EXPECT_TRUE(scriptOf("#!/usr/bin/env veldris run\nreturn 1").isLoaded());
    EXPECT_TRUE(scriptOf("#only").isLoaded());
    EXPECT_TRUE(scriptOf("\xEF\xBB\xBF# both\nreturn 1").isLoaded());
    EXPECT_EQ(scriptOf("#first\n=", "s").getLastCompilationResult()._failureMessage.substr(0, 4), "s:2:");
}

TEST(ScriptTest, unloadingKeepsTheText) {
    Script script = scriptOf("return 1");
    script.unload();
    EXPECT_FALSE(script.isLoaded());
    const auto environment = luaEnvironment();
    EXPECT_FALSE(environment->execute(script));
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::BYTECODE_NOT_READY);
    EXPECT_TRUE(script.load());
    EXPECT_TRUE(environment->execute(script));
}

TEST(ScriptTest, aFailedLoadForgetsWhatWasCompiled) {
    Script script = scriptOf("return 1");
    script.setSources("=");
    EXPECT_TRUE(script.isLoaded());
    EXPECT_FALSE(script.load());
    EXPECT_FALSE(script.isLoaded());
}

TEST(ScriptTest, deepNestingIsAnErrorOfTheText) {
    EXPECT_FALSE(scriptOf("return " + ovMemory::String(1000000, '(')).isLoaded());
    EXPECT_FALSE(scriptOf("a = " + ovMemory::String(1000000, '{')).isLoaded());
}

} // namespace
