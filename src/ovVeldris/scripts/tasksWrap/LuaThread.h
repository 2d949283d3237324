// A thread with an environment of its own, for scripts.
#pragma once

#include <map>
#include <ovTasks/Thread.h>
#include <ovVeldris/scripts/tasksWrap/LuaSchedulerTask.h>

namespace ovTasksWrap {

/// A thread and the Lua environment that its tasks run in, set up like that of the thread that made it.
///
/// Belongs to the environment that made it. The tasks stay objects of that environment's scripts; the thread
/// holds on to them until they are released.
class LuaThread {
public:
    /// Queues the set-up of the environment, which thus happens on the thread itself.
    /// @param creationEnvironment of the script that makes the thread; its options hold here, too
    /// @param logManager not owned, outlives the thread; null: nothing is logged
    LuaThread(ovScripts::Environment* creationEnvironment, ovVeldris::LogManager* logManager);
    LuaThread(const LuaThread&) = delete;
    LuaThread& operator=(const LuaThread&) = delete;
    /// Waits for the end of the running task. Those that wait do nothing.
    ~LuaThread();

    ovScripts::Environment* getCreationEnvironment() const { return _creationEnvironment; }

    /// Queues a task of the same environment that no thread has. @param reference holds its script object
    void addTask(LuaSchedulerTask& task, ovScripts::ScriptObjectReference reference);
    /// Lets go of the script object.
    void releaseTaskRef(const LuaSchedulerTask* task) { _taskReferences.erase(task); }
    bool run() { return _thread->run(); }
    /// Queues the execution of a script in the thread's environment. Its end is not told.
    void runScript(const ovScripts::Script& script);
    std::size_t getPendingCount() const { return _thread->getPendingCount(); }

private:
    ovScripts::Environment* _creationEnvironment;
    TaskHandle _current; ///< what the thread's scripts see while a task works; goes after their environment
    ovMemory::UniquePtr<ovTasks::Thread> _thread;
    ovMemory::UniquePtr<ovScripts::Environment> _environment;
    std::map<const LuaSchedulerTask*, ovScripts::ScriptObjectReference> _taskReferences;
};

} // namespace ovTasksWrap
