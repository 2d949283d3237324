#include <ovVeldris/scripts/tasksWrap/LuaScheduler.h>

#include "TaskEnvironment.h"

using luaTest::evaluate;
using luaTest::TaskEnvironment;

TEST(LuaSchedulerThreadTest, spreadsTasksOverItsThreads) {
    TaskEnvironment environment;
    // Each of eight tasks tells how many were done in its environment before it: three threads share them as
    // 3, 3 and 2, since none has run before all are added.
    EXPECT_EQ(evaluate(environment.get(), R"(local s, tasks, counts = ovTasks.Scheduler(3), {}, {}
        for i = 1, 8 do tasks[i] = ovTasks.Task()
            tasks[i]._workFunc = function() done = (done or 0) + 1
                ovTasks.CURRENT_TASK:addOutputUserData(ovMaths.Vector(done), true) end
            s:addTask(tasks[i]) end
        local pending = s:getPendingCount() s:run()
        for i = 1, 8 do finish(tasks[i]) counts[i] = math.tointeger(tasks[i]:getOutputUserData(0)._x)
            s:releaseTaskRef(tasks[i]) end
        return s:getThreadCount() .. ' ' .. pending .. ': ' .. table.concat(counts, ' '))"),
              "3 11: 1 1 1 2 2 2 3 3");
}

TEST(LuaSchedulerThreadTest, endsWithTasksQueued) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(s = ovTasks.Scheduler(2) s:run() for i = 1, 20 do local t = ovTasks.Task()
        t._workFunc = function() local x = 0 for j = 1, 1000 do x = x + j end end s:addTask(t) end)");
    environment.close();
}
