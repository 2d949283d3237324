// Running texts in environments.
#pragma once

#include <gtest/gtest.h>
#include <ovScripts/Environment.h>

namespace luaTest {

inline ovScripts::Script scriptOf(ovMemory::StringView sources, ovMemory::StringView name = "test") {
    ovScripts::Script script;
    script.setName(name);
    script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
    script.setSources(sources);
    script.load();
    return script;
}

/// An environment with Lua.
inline ovMemory::UniquePtr<ovScripts::Environment>
luaEnvironment(const ovScripts::EnvironmentOptions& options = {}) {
    auto environment = ovScripts::Environment::create(options);
    EXPECT_TRUE(environment->setEnvironmentFor(ovScripts::INTERPRETER::LUA));
    return environment;
}

/// What a text returns as a text, "tostring" of Lua; "error: " and the message when it fails.
inline ovMemory::String evaluate(ovScripts::Environment& environment, ovMemory::StringView text) {
    const ovScripts::Script script =
        scriptOf("local result = (function() " + ovMemory::String(text) + " end)() return tostring(result)");
    if (!script.isLoaded())
        return "syntax: " + script.getLastCompilationResult()._failureMessage;
    ovScripts::FunctionParameter result;
    if (!environment.execute(script, {}, ovMemory::BufferView<ovScripts::FunctionParameter>(&result, 1)))
        return "error: " + environment.getLastExecutionResult().error;
    return ovMemory::String(result.getValueAsString());
}

} // namespace luaTest
