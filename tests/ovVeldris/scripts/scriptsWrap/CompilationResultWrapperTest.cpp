#include <ovVeldris/scripts/scriptsWrap/CompilationResultWrapper.h>

#include "../support/Cases.h"

TEST(CompilationResultWrapperTest, membersAreReadAndSet) {
    luaTest::expectCases({
        {"local r = ovScripts.CompilationResult() return r._failureMessage .. ' ' .. r._failureType .. ' ' "
         ".. "
         "tostring(r._success)",
         " 0 true"},
        {"local r = ovScripts.CompilationResult() r._failureMessage = 'why' r._failureType = "
         "ovScripts.COMPILATION_FAILURE_TYPE.SYNTAX r._success = false return r._failureMessage .. ' ' .. "
         "r._failureType .. ' ' .. tostring(r._success)",
         "why 3 false"},
        {"ovScripts.CompilationResult()._success = 1",
         "error: test:1: ovScripts.CompilationResult._success expected boolean, got number"},
    });
}
