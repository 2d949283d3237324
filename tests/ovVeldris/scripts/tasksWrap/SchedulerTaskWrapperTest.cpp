#include <ovVeldris/scripts/tasksWrap/SchedulerTaskWrapper.h>

#include "TaskEnvironment.h"

using luaTest::evaluate;
using luaTest::expectCases;
using luaTest::Lines;
using luaTest::TaskEnvironment;

TEST(SchedulerTaskWrapperThreadTest, objectsGoInAndOut) {
    TaskEnvironment environment;
    expectCases(
        environment.get(),
        {
            {"local task = run(function() local t = ovTasks.CURRENT_TASK local v = t:getInputUserData(0) "
             "t:addOutputUserData(v * 2, true) t:addOutputUserData(t:getInputUserData(1), false) end, "
             "function(t) t:addInputUserData(ovMaths.Vector(1, 2, 3), false) "
             "t:addInputUserData(ovMemory.Buffer.fromString('bytes'), true) end) "
             "collectgarbage() return tostring(task:getOutputUserData(0)) .. ' ' .. "
             "tostring(task:getOutputUserData(1))",
             "Vec(2.000000, 4.000000, 6.000000, 0.000000) bytes"},
            // With the ownership the object goes; without it both have it.
            {"local b, t = ovMemory.Buffer.new(3), ovTasks.Task() t:addInputUserData(b, false) return #b",
             "3"},
            {"local b, t = ovMemory.Buffer.new(3), ovTasks.Task() t:addInputUserData(b, true) "
             "return select(2, pcall(b.getSize, b)):find('was handed to another environment') ~= nil",
             "true"},
            {"local t = ovTasks.Task() t:addInputUserData(7, false)",
             "error: test:1: ovTasks.Task.addInputUserData: argument 2 (object) expected an object of a "
             "declared "
             "type, got number"},
            {"local t = ovTasks.Task() t:addInputUserData(ovMaths.Vector())",
             "error: test:1: ovTasks.Task.addInputUserData: argument 3 (forwardOwnership) expected boolean, "
             "got "
             "nothing"},
        });
}

TEST(SchedulerTaskWrapperThreadTest, pastTheEndIsNilAndALine) {
    TaskEnvironment environment;
    EXPECT_EQ(evaluate(environment.get(), "return ovTasks.Task():getInputUserData(2)"), "nil");
    EXPECT_EQ(evaluate(environment.get(), "return ovTasks.Task():getOutputUserData(-1)"), "nil");
    const ovMemory::String rest = ": it has 0, the first is 0. Add it before the task is handed to a thread.";
    EXPECT_EQ(environment.getLines(), (Lines{"[LuaSchedulerTask] A task has no object 2" + rest,
                                             "[LuaSchedulerTask] A task has no object -1" + rest}));
}

TEST(SchedulerTaskWrapperThreadTest, buffersGoInAndOut) {
    TaskEnvironment environment;
    expectCases(
        environment.get(),
        {
            // The input is the same buffer, the output a copy.
            {"input = ovMemory.Buffer.fromString('abc') local task = run(function() local t = "
             "ovTasks.CURRENT_TASK "
             "t._inputBinaryData:setData(0, 65) local out = ovMemory.Buffer.fromString('out') "
             "t._outputBinaryData = out out:setData(0, 0) end, function(t) t._inputBinaryData = input end) "
             "return tostring(input) .. ' ' .. tostring(task._outputBinaryData) .. ' ' .. "
             "tostring(task._inputBinaryData == input)",
             "Abc out true"},
            {"local t = ovTasks.Task() return tostring(t._inputBinaryData) .. ' ' .. "
             "tostring(t._outputBinaryData)",
             "nil nil"},
            {"local t = ovTasks.Task() t._outputBinaryData = ovMemory.Buffer.new(2) local held = "
             "t._outputBinaryData "
             "t._outputBinaryData = nil collectgarbage() return tostring(t._outputBinaryData) .. ' ' .. "
             "#held",
             "nil 2"},
            {"local t = ovTasks.Task() t._inputBinaryData = ovMemory.Buffer.fromString('kept') "
             "collectgarbage() "
             "collectgarbage() return t._inputBinaryData",
             "kept"},
            {"ovTasks.Task()._inputBinaryData = nil",
             "error: test:1: ovTasks.Task._inputBinaryData expected ovMemory.Buffer, got nil"},
            {"ovTasks.Task()._outputBinaryData = 7",
             "error: test:1: ovTasks.Task._outputBinaryData expected ovMemory.Buffer or nil, got number"},
        });
}

TEST(SchedulerTaskWrapperThreadTest, functionsAndScriptsAreSetOnly) {
    TaskEnvironment environment;
    expectCases(
        environment.get(),
        {
            {"return ovTasks.Task()._workFunc", "error: test:1: ovTasks.Task._workFunc can be set, not read"},
            {"return ovTasks.Task()._initScript",
             "error: test:1: ovTasks.Task._initScript can be set, not read"},
            {"ovTasks.Task()._workFunc = 'text'",
             "error: test:1: ovTasks.Task._workFunc expected function, got string"},
            {"local c = coroutine.create(print) ovTasks.Task()._workFunc = function() return c end",
             "error: test:1: ovTasks.Task._workFunc: the object cannot be serialised: it holds a thread"},
            {"local t = ovTasks.Task() t._workFunc = function() return t end",
             "error: test:1: ovTasks.Task._workFunc: the object cannot be serialised: ovTasks.Task belongs "
             "to its "
             "environment"},
            {"ovTasks.Task()._initScript = nil",
             "error: test:1: ovTasks.Task._initScript expected ovScripts.Script, got nil"},
        });
}

TEST(SchedulerTaskWrapperThreadTest, whatAThreadHasIsNotTouched) {
    TaskEnvironment environment;
    const ovMemory::String refusal =
        "a thread has the task; wait until getSubmittedWork():isOver() says that it is done";
    expectCases(
        environment.get(),
        {
            {"task, thread = ovTasks.Task(), ovTasks.Thread() task._workFunc = function() end "
             "thread:addTask(task) return task:getSubmittedWork():getState()",
             "QUEUED"},
            {"task._workFunc = function() end", "error: test:1: ovTasks.Task._workFunc: " + refusal},
            {"return task:getOutputUserData(0)", "error: test:1: ovTasks.Task.getOutputUserData: " + refusal},
            {"thread:addTask(task)", "error: test:1: ovTasks.Thread.addTask: " + refusal},
            {"thread:run() finish(task) task._workFunc = function() end return 'free'", "free"},
        });
}

TEST(SchedulerTaskWrapperThreadTest, currentTaskIsOneOnlyWhileItWorks) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(local task, thread = run(function() kept = ovTasks.CURRENT_TASK end)
        thread:runScript(script('print(tostring(ovTasks.CURRENT_TASK)) print(select(2, pcall(kept.getInputUserData, kept, 0)))'))
        local last = ovTasks.Task() thread:addTask(last) finish(last))");
    EXPECT_EQ(
        environment.getLines(),
        (Lines{
            "[ovVeldris::lua] nil",
            "[ovVeldris::lua] ovTasks.Task.getInputUserData: the task is over; CURRENT_TASK is one only in "
            "its work function"}));
}

TEST(SchedulerTaskWrapperThreadTest, threadsMakeThreadsOfTheirOwn) {
    TaskEnvironment environment;
    evaluate(environment.get(), R"(run(function()
        local task, thread = ovTasks.Task(), ovTasks.Thread()
        task._workFunc = function() print('inner') end
        thread:addTask(task) thread:run() print(tostring(task:getSubmittedWork():waitFor(60)))
        print(select(2, pcall(thread.addTask, thread, ovTasks.CURRENT_TASK))) end))");
    EXPECT_EQ(
        environment.getLines(),
        (Lines{"[ovVeldris::lua] inner", "[ovVeldris::lua] true",
               "[ovVeldris::lua] ovTasks.Thread.addTask: the task belongs to the script that made it"}));
}
