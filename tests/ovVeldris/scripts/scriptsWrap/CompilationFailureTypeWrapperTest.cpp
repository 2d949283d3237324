#include <ovVeldris/scripts/scriptsWrap/CompilationFailureTypeWrapper.h>

#include "../support/Cases.h"

TEST(CompilationFailureTypeWrapperTest, hasItsConstants) {
    luaTest::expectCases({
        {"local T = ovScripts.COMPILATION_FAILURE_TYPE return table.concat({T.NO_ERROR, T.UNKNOWN, "
         "T.INTERPRETER_UNKNOWN, T.SYNTAX, T.MEMORY_ALLOCATION}, ' ')",
         "0 1 2 3 4"},
    });
}
