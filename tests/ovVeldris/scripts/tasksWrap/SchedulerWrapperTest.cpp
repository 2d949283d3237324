#include <ovVeldris/scripts/tasksWrap/SchedulerWrapper.h>

#include "TaskEnvironment.h"

TEST(SchedulerWrapperThreadTest, hasSomeThreads) {
    luaTest::TaskEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"return ovTasks.Scheduler(2):getThreadCount()", "2"},
            {"return ovTasks.Scheduler():getThreadCount() >= 1", "true"},
            {"ovTasks.Scheduler(0)",
             "error: test:1: ovTasks.Scheduler: argument 1 (threads) expected 1 to 256, got 0"},
            {"ovTasks.Scheduler(257)",
             "error: test:1: ovTasks.Scheduler: argument 1 (threads) expected 1 to 256, got 257"},
            {"ovTasks.Scheduler(1):addTask(7)",
             "error: test:1: ovTasks.Scheduler.addTask: argument 2 (task) expected ovTasks.Task, got number"},
        });
}
