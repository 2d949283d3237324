#include <ovScripts/Namespace.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;

TEST(NamespaceTest, constantsAreThere) {
    const auto environment = luaEnvironment();
    Namespace* space = environment->setNamespace("engine");
    space->addConstant("ANSWER", 42);
    space->addConstant("PI", 3.1415927f);
    space->addConstant("NAME", "x");
    EXPECT_EQ(evaluate(*environment, "return engine.ANSWER"), "42");
    EXPECT_EQ(evaluate(*environment, "return engine.PI == 3.1415927410125732421875"), "true");
    EXPECT_EQ(evaluate(*environment, "return engine.NAME"), "x");
    EXPECT_EQ(space->getConstants().size(), 3u);
}

TEST(NamespaceTest, enumerationsAreConstants) {
    const auto environment = luaEnvironment();
    environment->setNamespace("engine");
    environment->setNamespace("engine.INTERPRETER")->addEnumeration<INTERPRETER>();
    EXPECT_EQ(evaluate(*environment, "return engine.INTERPRETER.LUA"), "1");
    EXPECT_EQ(evaluate(*environment, "return engine.INTERPRETER.UNKNOWN"), "0");
}

TEST(NamespaceTest, functionsNeedNoObject) {
    const auto environment = luaEnvironment();
    Function* function = environment->setNamespace("engine")->addFunction("twice");
    function->addParameter(FUNCTION_PARAMETER_TYPE::INT);
    function->setFunction([](auto arguments) { return FunctionParameter(2 * arguments[0].getValueAsInt()); });
    EXPECT_EQ(evaluate(*environment, "return engine.twice(21)"), "42");
    EXPECT_EQ(evaluate(*environment, "return engine.twice({})"),
              "error: test:1: engine.twice: argument 1 expected integer, got table");
}

TEST(NamespaceTest, membersHoldObjectsThatScriptsDoNotOwn) {
    const auto environment = luaEnvironment();
    Namespace* space = environment->setNamespace("engine");
    UserType* type = environment->setUserType("engine.Number");
    int destroyed = 0;
    int value = 7;
    type->setDestructor([&](void*) { ++destroyed; });
    type->addMethod("get")->setFunction(
        [](auto arguments) { return FunctionParameter(*arguments[0].template getValueAsUserData<int>()); });
    space->setUserDataMember("CURRENT", "engine.Number", &value);
    EXPECT_EQ(evaluate(*environment, "return engine.CURRENT:get()"), "7");
    space->setUserDataMember("CURRENT", "engine.Number", nullptr);
    EXPECT_EQ(evaluate(*environment, "return engine.CURRENT"), "nil");
    environment->collectGarbage();
    EXPECT_EQ(destroyed, 0);
}

TEST(NamespaceTest, namesAreDeclaredOnce) {
    const auto environment = luaEnvironment();
    EXPECT_EQ(environment->setNamespace("engine"), environment->setNamespace("engine"));
    EXPECT_EQ(environment->getNamespaces().size(), 1u);
    EXPECT_EQ(environment->getNamespace("other"), nullptr);
}

} // namespace
