#include <ovVeldris/scripts/scriptsWrap/ScriptWrapper.h>

#include "../support/Cases.h"

namespace {

constexpr const char* MAKE =
    "local function make(text) local s = ovScripts.Script() s:setName('inner') "
    "s:setTargetInterpreter(ovScripts.INTERPRETER.LUA) s:setSources(text) return s end ";

void expectScriptResults(std::initializer_list<luaTest::Case> cases) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    for (const luaTest::Case& row : cases)
        EXPECT_EQ(luaTest::evaluate(*engine.getEnvironment(), MAKE + ovMemory::String(row.text)),
                  row.expected)
            << row.text;
}

} // namespace

TEST(ScriptWrapperTest, holdsATextAndItsLanguage) {
    expectScriptResults({
        {"local s = ovScripts.Script() return s:getName() .. s:getSources() .. s:getTargetInterpreter()",
         "0"},
        {"local s = make('x = 1') return s:getName() .. ' ' .. s:getSources() .. ' ' .. "
         "s:getTargetInterpreter()",
         "inner x = 1 1"},
        {"make(''):setTargetInterpreter(7)", "error: test:1: ovScripts.Script.setTargetInterpreter: argument "
                                             "2 is no value of INTERPRETER, got 7; the "
                                             "values are UNKNOWN or LUA"},
    });
}

TEST(ScriptWrapperTest, isCompiledAndCalled) {
    expectScriptResults({
        {"result = 1 local s = make('result = result + 1') local ok = s:load() s:call() s:call() "
         "return tostring(ok) .. ' ' .. result",
         "true 3"},
        {"local s = make('x = = 2') local ok = s:load() local r = s:getLastCompilationResult() "
         "return tostring(ok) .. ' ' .. tostring(r._success) .. ' ' .. r._failureType .. ' ' .. "
         "tostring(r._failureMessage:find('^inner:1: ') ~= nil)",
         "false false 3 true"},
        {"local s = make('\\nerror(\"too far\")') s:load() s:call()",
         "error: test:1: ovScripts.Script.call: inner:2: too far"},
        {"local s = make('return 7') s:load() s:unload() return pcall(s.call, s)", "false"},
        {"return (select(2, pcall(ovScripts.Script().call, 7)))",
         "ovScripts.Script.call: argument 1 expected ovScripts.Script, got number"},
    });
}

TEST(ScriptWrapperTest, resultIsAPartOfItsScript) {
    expectScriptResults({
        {"local r = (function() local s = make('x = =') s:load() return s:getLastCompilationResult() end)() "
         "for i = 1, 3 do collectgarbage() end return r._failureType",
         "3"},
        {"local s = make('x = =') local r = s:getLastCompilationResult() s:load() return r._failureType",
         "3"},
    });
}
