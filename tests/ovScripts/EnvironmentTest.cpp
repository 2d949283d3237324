#include <ovScripts/Environment.h>

#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using luaTest::scriptOf;

TEST(EnvironmentTest, withoutInterpreterNothingRuns) {
    const auto environment = Environment::create();
    EXPECT_EQ(environment->getInterpreter(), INTERPRETER::UNKNOWN);
    EXPECT_FALSE(environment->setEnvironmentFor(INTERPRETER::UNKNOWN));
    EXPECT_EQ(environment->setNamespace("a"), nullptr);
    EXPECT_EQ(environment->setUserType("a"), nullptr);
    EXPECT_EQ(environment->setFunc("a"), nullptr);
    EXPECT_FALSE(environment->execute(scriptOf("return 1")));
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::INTERPRETER_UNKNOWN);
    EXPECT_TRUE(environment->serializeScriptObject({}, false).empty());
    EXPECT_FALSE(environment->deserializeScriptObject({}));
    EXPECT_FALSE(environment->referToGlobal("a"));
    EXPECT_EQ(environment->getUsedMemory(), 0u);
    EXPECT_FALSE(environment->canAllocate(1));
    environment->setGlobal("a", 1);
    environment->collectGarbage();
    environment->restartLimits();
}

TEST(EnvironmentTest, resultsOutliveWhatScriptsHold) {
    const auto environment = luaEnvironment();
    FunctionParameter text;
    ASSERT_TRUE(environment->execute(scriptOf("return string.rep('text', 1000)"), {}, {&text, 1}));
    environment->collectGarbage();
    // Others of the size take its place.
    evaluate(*environment, "others = {} for i = 1, 100 do others[i] = string.rep('x', 4000 + i % 8) end");
    EXPECT_EQ(text.getValueAsString().size(), 4000u);
    EXPECT_EQ(text.getValueAsString().substr(3996), "text");
}

TEST(EnvironmentTest, aScriptOfNoLanguageIsRefused) {
    const auto environment = luaEnvironment();
    EXPECT_FALSE(environment->execute(Script()));
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::INTERPRETER_UNKNOWN);
}

TEST(EnvironmentTest, startingAnewDropsEverything) {
    const auto environment = luaEnvironment();
    environment->setNamespace("engine");
    evaluate(*environment, "x = 1");
    ASSERT_TRUE(environment->setEnvironmentFor(INTERPRETER::LUA));
    EXPECT_EQ(environment->getNamespace("engine"), nullptr);
    EXPECT_EQ(evaluate(*environment, "return x or engine"), "nil");
}

TEST(EnvironmentTest, errorsLeaveItUsable) {
    const auto environment = luaEnvironment();
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(evaluate(*environment, "error('no')"), "error: test:1: no");
        EXPECT_EQ(evaluate(*environment, "return 1"), "1");
    }
}

TEST(EnvironmentTest, functionsOfScriptsAreCalled) {
    const auto environment = luaEnvironment();
    evaluate(*environment, "function add(a, b) return a + b, 'more' end");
    const ScriptObjectReference add = environment->referToGlobal("add");
    const FunctionParameter arguments[] = {2, 3};
    FunctionParameter result = -1;
    ASSERT_TRUE(environment->callScriptFunction(add, arguments, {&result, 1}));
    EXPECT_EQ(result.getValueAsInt(), 5);
    EXPECT_FALSE(environment->callScriptFunction(add, {}, {&result, 1}));
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::RUNTIME);
    evaluate(*environment, "add = {}");
    EXPECT_FALSE(environment->callScriptFunction(environment->referToGlobal("add"), {}, {}));
    EXPECT_FALSE(environment->callScriptFunction({}, {}, {}));
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::OBJECT_INVALID);
}

TEST(EnvironmentTest, globalsAreSetFromOutside) {
    const auto environment = luaEnvironment();
    environment->setGlobal("answer", 42);
    environment->setGlobal("name", "x");
    EXPECT_EQ(evaluate(*environment, "return answer .. name"), "42x");
}

// The manual of the language, in examples that a binding layer could break.
TEST(EnvironmentTest, listsAreRead) {
    const auto environment = luaEnvironment();
    environment->setNamespace("engine");
    int light = 0;
    environment->setUserType("engine.Light");
    environment->setGlobal("light", FunctionParameter(&light, "engine.Light", false));
    evaluate(*environment, "list = {1, 2.5, 'text' .. 1, true, {}, light, nil, 8}");
    const auto list = environment->readList(environment->referToGlobal("list"), 8);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 8u);
    evaluate(*environment, "list = nil collectgarbage() x = ('y'):rep(1000)");
    EXPECT_EQ((*list)[0].getValueAsInt(), 1);
    EXPECT_EQ((*list)[1].getValueAsDouble(), 2.5);
    EXPECT_EQ((*list)[2].getValueAsString(), "text1") << "a text of its own";
    EXPECT_TRUE((*list)[3].getValueAsBool());
    EXPECT_TRUE((*list)[4].getScriptObjectReference());
    EXPECT_EQ((*list)[5].getValueAsUserData<int>(), &light);
    EXPECT_EQ((*list)[5].getUserDataTypeName(), "engine.Light");
    EXPECT_EQ((*list)[5].getStackPosition(), 0) << "no argument of a call";
    EXPECT_TRUE((*list)[6].isVoid());
    EXPECT_EQ((*list)[7].getValueAsInt(), 8);
}

TEST(EnvironmentTest, whatIsNoListIsNotRead) {
    const auto environment = luaEnvironment();
    const auto other = luaEnvironment();
    evaluate(*environment,
             "list = {1, 2, 3} empty = setmetatable({}, {__len = error, __index = error}) f = print");
    EXPECT_FALSE(environment->readList(environment->referToGlobal("list"), 2)) << "longer";
    EXPECT_TRUE(environment->readList(environment->referToGlobal("empty"), 2)->empty());
    EXPECT_FALSE(environment->readList(environment->referToGlobal("f"), 2));
    EXPECT_FALSE(environment->readList({}, 2));
    EXPECT_FALSE(other->readList(environment->referToGlobal("list"), 3)) << "another environment's";
    EXPECT_FALSE(Environment::create()->readList({}, 2));
}

TEST(EnvironmentTest, theLanguageIsUntouched) {
    const auto environment = luaEnvironment();
    EXPECT_EQ(evaluate(*environment,
                       "return 7 // 2 .. ' ' .. 7 / 2 .. ' ' .. 7 % -3 .. ' ' .. 1e15 .. ' ' .. 2^53"),
              "3 3.5 -2 1e+15 9.007199254741e+15");
    EXPECT_EQ(evaluate(*environment, "return math.maxinteger + 1 == math.mininteger"), "true");
    EXPECT_EQ(evaluate(*environment, "return '10' + 5"), "15");
    EXPECT_EQ(evaluate(*environment, "local co = coroutine.wrap(function(a) local b = coroutine.yield(a * 2) "
                                     "return a + b end) return co(4) .. co(5)"),
              "89");
    EXPECT_EQ(evaluate(*environment,
                       "local function counter() local n = 0 return function() n = n + 1 return n end "
                       "end local a, b = counter(), counter() a() return a() .. b()"),
              "21");
    EXPECT_EQ(evaluate(*environment, "local ok, e = pcall(error, {code = 7}) return tostring(ok) .. e.code"),
              "false7");
    EXPECT_EQ(evaluate(*environment,
                       "local log = '' do local x <close> = setmetatable({}, {__close = function() "
                       "log = log .. 'closed' end}) log = log .. 'open ' end return log"),
              "open closed");
    EXPECT_EQ(evaluate(*environment, "return select(2, pcall(coroutine.wrap(function() error('in') end)))"),
              "test:1: in");
    EXPECT_EQ(evaluate(*environment, "return string.format('%q', 1/3)"), "0x1.5555555555555p-2");
}

// Small enough that a script that opens one for each task does not notice.
TEST(EnvironmentTest, memoryComesBack) {
    const auto environment = luaEnvironment();
    environment->collectGarbage();
    const std::size_t before = environment->getUsedMemory();
    evaluate(*environment, "local t = {} for i = 1, 100000 do t[i] = {i} end");
    environment->collectGarbage();
    EXPECT_LT(environment->getUsedMemory(), before + 4096);
    EXPECT_LT(before, 100000u);
}

} // namespace
