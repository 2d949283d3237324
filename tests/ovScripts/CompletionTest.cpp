#include <ovScripts/Environment.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::luaEnvironment;
using Names = ovMemory::Buffer<ovMemory::String>;

TEST(CompletionTest, offersWhatBeginsAsTyped) {
    const auto environment = luaEnvironment();
    environment->setNamespace("engine")->addConstant("LIMIT", 1);
    environment->setUserType("engine.Light");
    environment->setUserType("engine.Model");
    EXPECT_EQ(environment->getCompletions("x = engi"), Names{"engine"});
    EXPECT_EQ(environment->getCompletions("f(engine.Li"), Names{"engine.Light"});
    EXPECT_EQ(environment->getCompletions("engine."),
              (Names{"engine.LIMIT", "engine.Light", "engine.Model"}));
    EXPECT_EQ(environment->getCompletions("string.form"), Names{"string.format"});
    EXPECT_TRUE(environment->getCompletions("engine.missing.x").empty());
    EXPECT_TRUE(environment->getCompletions("zzz").empty());
}

TEST(CompletionTest, objectsOfferTheirMembers) {
    const auto environment = luaEnvironment();
    Namespace* space = environment->setNamespace("engine");
    UserType* type = environment->setUserType("engine.Light");
    int light = 0;
    type->addMethod("switchOn");
    type->addMemberVariable("strength", FUNCTION_PARAMETER_TYPE::FLOAT, {}, nullptr, nullptr);
    type->setNamedMemberList([] {
        return ovMemory::Buffer<UserType::NamedMembers>{{"a", {"setting", "shared"}}, {"b", {"shared"}}};
    });
    space->setUserDataMember("SUN", "engine.Light", &light);
    EXPECT_EQ(environment->getCompletions("engine.SUN:s"), Names{"engine.SUN:switchOn"});
    EXPECT_EQ(
        environment->getCompletions("engine.SUN.s"),
        (Names{"engine.SUN.setting", "engine.SUN.shared", "engine.SUN.strength", "engine.SUN.switchOn"}));
}

TEST(CompletionTest, callsNothing) {
    const auto environment = luaEnvironment();
    luaTest::evaluate(*environment, "t = setmetatable({}, {__index = function() called = true end})");
    EXPECT_TRUE(environment->getCompletions("t.a.b").empty());
    EXPECT_EQ(luaTest::evaluate(*environment, "return called"), "nil");
}

TEST(CompletionTest, withoutAnInterpreterThereIsNothing) {
    EXPECT_TRUE(Environment::create()->getCompletions("a").empty());
}

} // namespace
