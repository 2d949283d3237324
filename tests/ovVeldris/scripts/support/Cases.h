// Tables of texts for scripts and what they return.
#pragma once

#include <initializer_list>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <support/Lua.h>

namespace luaTest {

struct Case {
    ovMemory::String text;     ///< as a function's body
    ovMemory::String expected; ///< what tostring() gives of its result, or the error
};

/// Evaluates each text in an environment of its own kind, all in one.
inline void expectCases(ovScripts::Environment& environment, std::initializer_list<Case> cases) {
    for (const Case& row : cases)
        EXPECT_EQ(evaluate(environment, row.text), row.expected) << row.text;
}

/// The same in a new environment with all bindings.
inline void expectCases(std::initializer_list<Case> cases) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    expectCases(*engine.getEnvironment(), cases);
}

} // namespace luaTest
