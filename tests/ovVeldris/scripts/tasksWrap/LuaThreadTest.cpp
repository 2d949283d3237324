#include <ovVeldris/scripts/tasksWrap/LuaThread.h>

#include "TaskEnvironment.h"

#include <thread>

using luaTest::evaluate;
using luaTest::Lines;
using luaTest::TaskEnvironment;

namespace {

// Adds tasks that print their numbers to a global thread.
constexpr const char* ADD =
    "thread = thread or ovTasks.Thread() tasks = {} for i = 1, 20 do tasks[i] = ovTasks.Task() "
    "tasks[i]._workFunc = function() print(i) end thread:addTask(tasks[i]) end ";

} // namespace

TEST(LuaThreadTest, tasksRunInOrderWhenTheThreadRuns) {
    TaskEnvironment environment;
    evaluate(environment.get(), ADD);
    EXPECT_EQ(environment.getLines(), Lines{});
    evaluate(environment.get(), "thread:run() finish(tasks[20])");
    Lines expected;
    for (int i = 1; i <= 20; ++i)
        expected.push_back("[ovVeldris::lua] " + std::to_string(i));
    EXPECT_EQ(environment.getLines(), expected);
}

// Finalisers run in the reverse order of creation: tasks go while the thread has them.
TEST(LuaThreadTest, environmentsEndWithTasksQueuedAndRunning) {
    for (const bool threadFirst : {false, true})
        for (int round = 0; round < 5; ++round) {
            TaskEnvironment environment;
            if (threadFirst)
                evaluate(environment.get(), "thread = ovTasks.Thread()");
            evaluate(environment.get(), ADD + ovMemory::String("thread:run()"));
            environment.close();
            EXPECT_LE(environment.getLines().size(), 20u);
        }
}

TEST(LuaThreadTest, interruptedEnvironmentsEndWhateverTheirThreadsDo) {
    TaskEnvironment environment({.isInterruptible = true});
    evaluate(environment.get(), "thread = ovTasks.Thread() task = ovTasks.Task() task._workFunc = function() "
                                "print('begun') while true do pcall(error) end end thread:addTask(task) "
                                "thread:run()");
    while (environment.getLines().empty())
        std::this_thread::yield();
    environment.get().interrupt();
    environment.get().restartLimits(); // what the creator forgets stays true for the thread
    evaluate(environment.get(), "finish(task)");
    environment.close();
    const Lines expected = {"[ovVeldris::lua] begun", "[ovVeldris::lua] Unknown error during execution :",
                            "[ovVeldris::lua] test:1: the script was interrupted"};
    EXPECT_EQ(environment.getLines(), expected);
}

TEST(LuaThreadTest, threadsEndWithoutHavingRun) {
    TaskEnvironment environment;
    evaluate(environment.get(), ADD);
    environment.close();
    EXPECT_EQ(environment.getLines(), Lines{});
}

TEST(LuaThreadTest, tasksAreHeldUntilTheyAreReleased) {
    TaskEnvironment environment;
    EXPECT_EQ(evaluate(environment.get(), R"(held = setmetatable({}, {__mode = 'k'})
        thread = ovTasks.Thread() local task = ovTasks.Task() held[task] = true thread:addTask(task) thread:run()
        finish(task) releasing = task:getSubmittedWork())"),
              "nil");
    const char* const count =
        "collectgarbage() collectgarbage() local n = 0 for _ in pairs(held) do n = n + 1 end return n";
    EXPECT_EQ(evaluate(environment.get(), count), "1");
    evaluate(environment.get(),
             "for task in pairs(held) do thread:releaseTaskRef(task) end thread:releaseTaskRef(nil)");
    EXPECT_EQ(evaluate(environment.get(), count), "0");
    EXPECT_EQ(evaluate(environment.get(), "return releasing:getState()"), "FINISHED");
}

// Against the advice: the script lets the tasks go at once. They are done or not, and nothing else.
TEST(LuaThreadTest, tasksMayBeReleasedTooEarly) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(thread = ovTasks.Thread() thread:run()
        for i = 1, 100 do local task = ovTasks.Task() task._workFunc = function() local x = 0
            for j = 1, 1000 do x = x + j end end
            thread:addTask(task) thread:releaseTaskRef(task) task = nil collectgarbage() end
        local last = ovTasks.Task() last._workFunc = function() print('last') end thread:addTask(last) finish(last))");
    EXPECT_EQ(environment.getLines(), Lines{"[ovVeldris::lua] last"});
}

TEST(LuaThreadTest, collectingARunningTaskWaitsForItsEnd) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(thread = ovTasks.Thread()
        local task = ovTasks.Task() task:addInputUserData(ovMemory.Buffer.fromString('kept'), true)
        task._workFunc = function() local sum = 0 for i = 1, 3000000 do sum = sum + i end
            print(tostring(ovTasks.CURRENT_TASK:getInputUserData(0))) end
        thread:addTask(task) thread:run()
        local work = task:getSubmittedWork()
        repeat until work:getState() ~= 'QUEUED'
        thread:releaseTaskRef(task) task = nil collectgarbage() collectgarbage())");
    EXPECT_EQ(environment.getLines(), Lines{"[ovVeldris::lua] kept"});
}

TEST(LuaThreadTest, scriptsRunInItsEnvironment) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(local thread = ovTasks.Thread()
        thread:runScript(script('shared = 5')) thread:runScript(script('error("ignored")')) thread:runScript(nil)
        local task = ovTasks.Task() task._workFunc = function() print(shared) end
        collectgarbage() thread:addTask(task) thread:run() finish(task))");
    EXPECT_EQ(environment.getLines(), Lines{"[ovVeldris::lua] 5"});
    EXPECT_EQ(evaluate(environment.get(), "return shared"), "nil");
}

TEST(LuaThreadTest, severalThreadsWorkAtOnce) {
    TaskEnvironment environment;
    EXPECT_EQ(evaluate(environment.get(), R"(local tasks, threads = {}, {}
        for i = 1, 4 do threads[i], tasks[i] = ovTasks.Thread(), ovTasks.Task()
            tasks[i]._workFunc = function() local sum = ovMaths.Vector() for j = 1, 1000 do
                sum = sum + ovMaths.Vector(i, j) end ovTasks.CURRENT_TASK:addOutputUserData(sum, true) end
            threads[i]:addTask(tasks[i]) threads[i]:run() end
        local total = ovMaths.Vector() for i = 1, 4 do finish(tasks[i]) total = total + tasks[i]:getOutputUserData(0) end
        return total)"),
              "Vec(10000.000000, 2002000.000000, 0.000000, 0.000000)");
}
