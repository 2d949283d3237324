#include <ovVeldris/scripts/tasksWrap/ThreadWrapper.h>

#include "TaskEnvironment.h"

TEST(ThreadWrapperTest, refusesWhatIsNoTask) {
    luaTest::TaskEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"ovTasks.Thread():addTask(nil)",
             "error: test:1: ovTasks.Thread.addTask: argument 2 (task) expected ovTasks.Task, got nil"},
            {"ovTasks.Thread():releaseTaskRef(7)", "error: test:1: ovTasks.Thread.releaseTaskRef: argument 2 "
                                                   "(task) expected ovTasks.Task or nil, got number"},
            {"ovTasks.Thread():runScript('x = 1')", "error: test:1: ovTasks.Thread.runScript: argument 2 "
                                                    "(script) expected ovScripts.Script or nil, got string"},
            {"local t = ovTasks.Thread() return select('#', t:run(), t:run())", "2"},
            {"serialize(ovTasks.Thread())", "error: test:1: serialize: the object cannot be serialised: "
                                            "ovTasks.Thread belongs to its environment"},
        });
}
