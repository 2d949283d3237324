#include <ovVeldris/scripts/tasksWrap/LuaSchedulerTask.h>

#include "TaskEnvironment.h"

using luaTest::evaluate;
using luaTest::Lines;
using luaTest::TaskEnvironment;

TEST(LuaSchedulerTaskThreadTest, withoutAFunctionItDoesNothing) {
    TaskEnvironment environment;
    EXPECT_EQ(evaluate(environment.get(), "return run():getSubmittedWork():getState()"), "FINISHED");
    EXPECT_EQ(environment.getLines(), Lines{});
}

TEST(LuaSchedulerTaskThreadTest, runsInAnotherEnvironmentWithWhatItEncloses) {
    TaskEnvironment environment;
    evaluate(environment.get(), "mine = 1 local greeting = 'hello' run(function() print(greeting .. ' ' .. "
                                "tostring(mine)) print(tostring(ovTasks.CURRENT_TASK ~= nil)) end)");
    EXPECT_EQ(environment.getLines(), (Lines{"[ovVeldris::lua] hello nil", "[ovVeldris::lua] true"}));
    EXPECT_EQ(evaluate(environment.get(), "return ovTasks.CURRENT_TASK"), "nil");
}

TEST(LuaSchedulerTaskThreadTest, errorsAreToldInTwoLinesAndTheThreadGoesOn) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(local task, thread = run(function() error('too far') end)
        local second = ovTasks.Task() second._workFunc = function() print('second') end
        thread:addTask(second) finish(second) outcome = task:getSubmittedWork():getState())");
    const Lines lines = environment.getLines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "[ovVeldris::lua] Runtime error during script execution :");
    EXPECT_EQ(lines[1], "[ovVeldris::lua] test:1: too far");
    EXPECT_EQ(lines[2], "[ovVeldris::lua] second");
    EXPECT_EQ(evaluate(environment.get(), "return outcome"), "FINISHED") << "the task ends normally";
}

TEST(LuaSchedulerTaskThreadTest, lackOfMemoryIsToldAsSuch) {
    ovScripts::EnvironmentOptions options;
    options.memoryLimit = 24 << 20;
    TaskEnvironment environment(options);
    evaluate(environment.get(),
             "run(function() local t = {} for i = 1, 1e9 do t[i] = ('x'):rep(1000) .. i end end)");
    EXPECT_EQ(environment.getLines(),
              (Lines{"[ovVeldris::lua] Memory allocation failure, script execution failed :",
                     "[ovVeldris::lua] not enough memory"}));
}

TEST(LuaSchedulerTaskThreadTest, endlessWorkEndsAtTheLimitOfItsMaker) {
    ovScripts::EnvironmentOptions options;
    options.stepLimit = 1000000;
    TaskEnvironment environment(options);
    evaluate(environment.get(),
             "run(function() while true do pcall(function() while true do end end) end end)");
    const Lines lines = environment.getLines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "[ovVeldris::lua] Unknown error during execution :");
    EXPECT_NE(lines[1].find("the limit of 1000000 steps is reached"), ovMemory::String::npos) << lines[1];
}

TEST(LuaSchedulerTaskThreadTest, initialisationRunsFirstAndItsErrorLeavesTheWorkOut) {
    TaskEnvironment environment;
    evaluate(environment.get(),
             "run(function() print(prepared) end, function(t) t._initScript = script('prepared "
             "= 5') end)");
    EXPECT_EQ(environment.getLines(), Lines{"[ovVeldris::lua] 5"});
    evaluate(environment.get(), "run(function() print('never') end, function(t) t._initScript = "
                                "script('\\nerror(\"no data\")') end)");
    EXPECT_EQ(
        environment.getLines(),
        (Lines{"[ovVeldris::lua] 5", "[LuaSchedulerTask] Task could not execute provided initialization "
                                     "script 'inner'. Error reported : inner:2: no data"}));
}

TEST(LuaSchedulerTaskThreadTest, initialisationMayBeCollectedBeforeItsTurn) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(local task, thread = ovTasks.Task(), ovTasks.Thread()
        task._initScript = script('prepared = 7') task._workFunc = function() print(prepared) end
        thread:addTask(task) task._initScript = nil collectgarbage() collectgarbage() thread:run() finish(task))");
    // Setting it while the thread has the task is an error, which ends the script there.
    EXPECT_EQ(environment.getLines(), Lines{});
    evaluate(environment.get(), R"(local task, thread = ovTasks.Task(), ovTasks.Thread()
        task._initScript = script('prepared = 7') task._workFunc = function() print(prepared) end
        thread:addTask(task) collectgarbage() collectgarbage() thread:run() finish(task))");
    EXPECT_EQ(environment.getLines(), Lines{"[ovVeldris::lua] 7"});
}

TEST(LuaSchedulerTaskThreadTest, runsAgain) {
    TaskEnvironment environment;
    evaluate(environment.get(),
             R"(local task, thread = run(function() count = (count or 0) + 1 print(count) end)
        thread:addTask(task) finish(task) local other = ovTasks.Thread() other:addTask(task) other:run() finish(task))");
    EXPECT_EQ(environment.getLines(),
              (Lines{"[ovVeldris::lua] 1", "[ovVeldris::lua] 2", "[ovVeldris::lua] 1"}));
}
