#include <support/Lua.h>
#include <thread>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using luaTest::scriptOf;

constexpr const char* STEPS_USED = "error: test:1: the limit of 100000 steps is reached";

TEST(LuaStateTest, endlessScriptsEndByTheirSteps) {
    for (const char* text : {
             "while true do end",
             "while true do pcall(function() while true do end end) end",
             "local function f() return f() end f()",
             "coroutine.wrap(function() while true do end end)()",
             "while true do coroutine.wrap(function() while true do end end)() end",
             "while true do pcall(error) end",
             "repeat until xpcall(function() while true do end end, function() while true do end end) == 7",
             "goto a ::a:: goto a",
         }) {
        const auto environment = luaEnvironment({.stepLimit = 100000});
        const ovMemory::String result = evaluate(*environment, text);
        EXPECT_NE(result.find("steps is reached"), std::string::npos) << text << ": " << result;
        EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::LIMIT_REACHED)
            << text;
    }
}

TEST(LuaStateTest, stepsCountOverAllExecutions) {
    const auto environment = luaEnvironment({.stepLimit = 100000});
    const char* loop = "for i = 1, 20000 do end";
    int executions = 0;
    while (evaluate(*environment, loop) == "nil" && executions < 100)
        ++executions;
    // A round of a numeric loop is one instruction.
    EXPECT_GE(executions, 4);
    EXPECT_LE(executions, 5);
    EXPECT_EQ(evaluate(*environment, loop), STEPS_USED);
    environment->restartLimits();
    EXPECT_EQ(evaluate(*environment, loop), "nil");
}

TEST(LuaStateTest, endlessScriptsEndByTheirTime) {
    const auto environment = luaEnvironment({.timeLimit = 0.05});
    EXPECT_EQ(evaluate(*environment, "while true do pcall(function() while true do end end) end"),
              "error: test:1: the time limit of 0.05 s is reached");
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::LIMIT_REACHED);
    environment->restartLimits();
    EXPECT_EQ(evaluate(*environment, "return 1"), "1");
}

TEST(LuaStateTest, anotherThreadEndsAScript) {
    const auto environment = luaEnvironment({.isInterruptible = true});
    std::thread other([&] { environment->interrupt(); });
    EXPECT_EQ(evaluate(*environment, "while true do end"), "error: test:1: the script was interrupted");
    other.join();
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::LIMIT_REACHED);
    EXPECT_NE(evaluate(*environment, "for i = 1, 10000 do end"), "nil");
    environment->restartLimits();
    EXPECT_EQ(evaluate(*environment, "for i = 1, 10000 do end"), "nil");
}

TEST(LuaStateTest, interruptionsAreSharedAndHeededWhereTheOptionsSaySo) {
    const auto environment = luaEnvironment({.isInterruptible = true});
    const auto other = luaEnvironment({.isInterruptible = true});
    const auto deaf = luaEnvironment({.stepLimit = 1'000'000});
    other->shareInterruptions(*environment);
    deaf->shareInterruptions(*environment);
    environment->interrupt();
    environment->restartLimits();
    EXPECT_EQ(evaluate(*other, "for i = 1, 20000000 do end"), "error: test:1: the script was interrupted");
    EXPECT_EQ(evaluate(*deaf, "for i = 1, 10000 do end"), "nil");
}

TEST(LuaStateTest, endlessRecursionIsAnError) {
    const auto environment = luaEnvironment();
    EXPECT_NE(evaluate(*environment, "local function f() return 1 + f() end f()").find("stack overflow"),
              std::string::npos);
    EXPECT_NE(evaluate(*environment,
                       "local t = setmetatable({}, {}) getmetatable(t).__index = function(t, k) "
                       "return t[k] end return t.x")
                  .find("overflow"),
              std::string::npos);
    EXPECT_NE(evaluate(*environment, "return string.rep('x', 10):gsub('.', function() return "
                                     "load('return ' .. string.rep('(', 1000))() end)")
                  .find("error: "),
              std::string::npos);
    EXPECT_EQ(evaluate(*environment, "return 1"), "1");
}

TEST(LuaStateTest, memoryHasALimit) {
    constexpr std::size_t LIMIT = 4 << 20;
    const auto environment = luaEnvironment({.memoryLimit = LIMIT});
    for (const char* text : {
             "local t = {} for i = 1, 1e9 do t[i] = {i} end",
             "local s = 'x' while true do s = s .. s end",
             "return ('x'):rep(1e9)",
             "local t = {} while true do t[#t + 1] = coroutine.create(print) end",
             "while true do pcall(function() local t = {} while true do t[#t + 1] = {} end end) "
             "error('done') end",
         }) {
        const ovMemory::String result = evaluate(*environment, text);
        EXPECT_TRUE(result == "error: not enough memory" || result == "error: test:1: done")
            << text << ": " << result;
        EXPECT_LE(environment->getUsedMemory(), LIMIT);
        // The environment goes on.
        EXPECT_EQ(evaluate(*environment, "return #('x'):rep(1000000)"), "1000000");
    }
    evaluate(*environment, "return ('x'):rep(1e9)");
    EXPECT_EQ(environment->getLastExecutionResult().failureType, EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION);
}

// A limit below what an interpreter needs is an environment without one.
TEST(LuaStateTest, tinyMemoryLimitsGiveNoInterpreter) {
    for (const std::size_t limit : {1u, 1000u, 5000u, 10000u, 20000u}) {
        auto environment = Environment::create({.memoryLimit = limit});
        if (environment->setEnvironmentFor(INTERPRETER::LUA))
            EXPECT_EQ(environment->getInterpreter(), INTERPRETER::LUA);
        else
            EXPECT_EQ(environment->setNamespace("x"), nullptr);
    }
}

TEST(LuaStateTest, errorsSayWhereAndHow) {
    const auto environment = luaEnvironment();
    const Script script = scriptOf("local function inner()\n  error('broken')\nend\ninner()", "demo.lua");
    EXPECT_FALSE(environment->execute(script));
    const ExecutionResult& result = environment->getLastExecutionResult();
    EXPECT_EQ(result.error, "demo.lua:2: broken");
    EXPECT_EQ(result.place, "demo.lua:2");
    EXPECT_EQ(result.failureType, EXECUTION_FAILURE_TYPE::RUNTIME);
    EXPECT_NE(result.traceback.find("demo.lua:4: in main chunk"), std::string::npos) << result.traceback;
    EXPECT_TRUE(environment->execute(scriptOf("return 1")));
    EXPECT_TRUE(environment->getLastExecutionResult().error.empty());
    EXPECT_TRUE(environment->getLastExecutionResult().traceback.empty());
}

TEST(LuaStateTest, errorsNeedNotBeTexts) {
    const auto environment = luaEnvironment();
    EXPECT_EQ(evaluate(*environment, "error({})"),
              "error: the error is not a text but a value of type table");
    EXPECT_EQ(evaluate(*environment, "error(nil)"), "error: the error is not a text but a value of type nil");
    EXPECT_EQ(evaluate(*environment, "error(setmetatable({}, {__tostring = function() return 'told' end}))"),
              "error: told");
    EXPECT_EQ(evaluate(*environment, "error(setmetatable({}, {__tostring = function() error('again') end}))")
                  .substr(0, 7),
              "error: ");
    EXPECT_EQ(evaluate(*environment, "error(setmetatable({}, {__tostring = function() return {} end}))")
                  .substr(0, 7),
              "error: ");
    EXPECT_EQ(evaluate(*environment, "return 1"), "1");
}

TEST(LuaStateTest, finalisersWarn) {
    const auto environment = luaEnvironment();
    ovMemory::Buffer<ovMemory::String> warnings;
    environment->setWarningReceiver([&](ovMemory::StringView text) { warnings.emplace_back(text); });
    evaluate(*environment, "setmetatable({}, {__gc = function() error('late') end})");
    environment->collectGarbage();
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("late"), std::string::npos) << warnings[0];
    evaluate(*environment, "warn('a', 'b') warn('@off') warn('c')");
    EXPECT_EQ(warnings, (ovMemory::Buffer<ovMemory::String>{warnings[0], "ab", "c"}));
}

} // namespace
