#include <ovVeldris/scripts/tasksWrap/ThreadSubmittedWorkWrapper.h>

#include "TaskEnvironment.h"

using luaTest::TaskEnvironment;

TEST(ThreadSubmittedWorkWrapperTest, followsATask) {
    TaskEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"return ovTasks.Task():getSubmittedWork()", "nil"},
            {"task, thread = ovTasks.Task(), ovTasks.Thread() thread:addTask(task) work = "
             "task:getSubmittedWork() "
             "return work:getState() .. ' ' .. tostring(work:isOver()) .. ' ' .. tostring(work:waitFor(0))",
             "QUEUED false false"},
            {"return work:waitFor(-5)", "false"},
            {"return work:waitFor(0 / 0)", "false"},
            {"thread:run() return tostring(work:waitFor(1e300)) .. ' ' .. work:getState() .. "
             "work:getFailure()",
             "true FINISHED"},
        });
}

TEST(ThreadSubmittedWorkWrapperTest, outlivesItsThread) {
    TaskEnvironment environment;
    luaTest::expectCases(environment.get(),
                         {
                             {"local task, thread = ovTasks.Task(), ovTasks.Thread() thread:addTask(task) "
                              "work = task:getSubmittedWork()",
                              "nil"},
                             {"collectgarbage() collectgarbage() return work:getState()", "DROPPED"},
                         });
}
