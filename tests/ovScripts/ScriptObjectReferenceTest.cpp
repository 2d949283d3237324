#include <ovScripts/ScriptObjectReference.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;

TEST(ScriptObjectReferenceTest, holdsAnObjectUntilItLetsGo) {
    const auto environment = luaEnvironment();
    evaluate(*environment, "object = {} weak = setmetatable({object}, {__mode = 'v'})");
    ScriptObjectReference reference = environment->referToGlobal("object");
    EXPECT_NE(reference.getInterpreterReference(), 0);
    evaluate(*environment, "object = nil");
    environment->collectGarbage();
    EXPECT_EQ(evaluate(*environment, "return #weak"), "1");
    ScriptObjectReference copy = reference;
    reference.reset();
    EXPECT_FALSE(reference);
    environment->collectGarbage();
    EXPECT_EQ(evaluate(*environment, "return #weak"), "1");
    copy = ScriptObjectReference();
    environment->collectGarbage();
    EXPECT_EQ(evaluate(*environment, "return #weak"), "0");
}

TEST(ScriptObjectReferenceTest, becomesEmptyWithItsEnvironment) {
    auto environment = luaEnvironment();
    evaluate(*environment, "object = {}");
    const ScriptObjectReference first = environment->referToGlobal("object");
    const ScriptObjectReference copy = first;
    environment->setEnvironmentFor(INTERPRETER::LUA);
    EXPECT_FALSE(first);
    evaluate(*environment, "object = {}");
    const ScriptObjectReference second = environment->referToGlobal("object");
    environment.reset();
    EXPECT_FALSE(second);
    EXPECT_FALSE(copy);
    EXPECT_EQ(second.getEnvironment(), nullptr);
    const ScriptObjectReference copyOfNothing = second;
    EXPECT_FALSE(copyOfNothing);
}

TEST(ScriptObjectReferenceTest, nilIsNoObject) {
    const auto environment = luaEnvironment();
    EXPECT_FALSE(environment->referToGlobal("missing"));
    EXPECT_FALSE(ScriptObjectReference());
}

TEST(ScriptObjectReferenceTest, anotherEnvironmentDoesNotTakeIt) {
    const auto first = luaEnvironment();
    const auto second = luaEnvironment();
    evaluate(*first, "function f() return 1 end");
    const ScriptObjectReference function = first->referToGlobal("f");
    EXPECT_FALSE(second->callScriptFunction(function, {}, {}));
    EXPECT_EQ(second->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::OBJECT_INVALID);
    second->setFunc("foreign")->setFunction([&](auto) { return FunctionParameter(function); });
    EXPECT_EQ(evaluate(*second, "return foreign()"),
              "error: test:1: an object of another environment cannot be handed over");
}

} // namespace
