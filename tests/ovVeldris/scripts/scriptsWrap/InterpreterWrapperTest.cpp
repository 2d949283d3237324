#include <ovVeldris/scripts/scriptsWrap/InterpreterWrapper.h>

#include "../support/Cases.h"

TEST(InterpreterWrapperTest, hasItsConstants) {
    luaTest::expectCases({
        {"return ovScripts.INTERPRETER.UNKNOWN .. ' ' .. ovScripts.INTERPRETER.LUA", "0 1"},
        {"return math.type(ovScripts.INTERPRETER.LUA)", "integer"},
    });
}
