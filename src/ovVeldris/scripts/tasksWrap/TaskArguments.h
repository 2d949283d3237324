// Tasks as arguments of the functions that scripts call.
#pragma once

#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/tasksWrap/TaskTypeNames.h>

namespace ovTasksWrap {

/// The task of a handle, for a function of this environment. An error where there is none, and where a thread
/// has it.
inline LuaSchedulerTask& taskOf(const TaskHandle& handle, const ovScripts::Environment* environment) {
    LuaSchedulerTask* task = handle.get();
    if (!task)
        throw ovCommonWrap::ArgumentError("the task is over; CURRENT_TASK is one only in its work function");
    if (task->getCreationEnvironment() == environment && task->isAway())
        throw ovCommonWrap::ArgumentError(
            "a thread has the task; wait until getSubmittedWork():isOver() says that it is done");
    return *task;
}

/// The same for functions that are not for the thread that does the task.
inline LuaSchedulerTask& ownTaskOf(const TaskHandle& handle, const ovScripts::Environment* environment) {
    LuaSchedulerTask& task = taskOf(handle, environment);
    if (task.getCreationEnvironment() != environment)
        throw ovCommonWrap::ArgumentError("the task belongs to the script that made it");
    return task;
}

/// Adds "addTask", "releaseTaskRef" and "run" to the type of a LuaThread or a LuaScheduler.
template <typename Runner>
void runnerFunctions(ovScripts::UserType& type, ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovScripts::FUNCTION_PARAMETER_TYPE;
    type.addMethod("addTask")
        ->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, TYPE_NAME<TaskHandle>, "task")
        .setHelp("Hands a task over, and holds on to it until releaseTaskRef().")
        .setFunction([environment](Arguments arguments) {
            LuaSchedulerTask& task = ownTaskOf(*arguments[1].getValueAsUserData<TaskHandle>(), environment);
            arguments[0].getValueAsUserData<Runner>()->addTask(task, environment->referTo(arguments[1]));
            return ovScripts::FunctionParameter::VOID;
        });
    method(
        type, "releaseTaskRef",
        [](Runner& self, const TaskHandle* task) {
            if (task)
                self.releaseTaskRef(task->get());
        },
        {"task"}, "Lets go of a task, so that it can be collected. One that waits is then not done.");
    method(
        type, "run", [](Runner& self) { self.run(); }, {}, "Begins with the tasks.");
}

} // namespace ovTasksWrap
