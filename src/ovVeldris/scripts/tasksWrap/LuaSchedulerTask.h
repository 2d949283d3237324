// Work that a script hands to another thread.
#pragma once

#include <mutex>
#include <optional>
#include <ovScripts/Environment.h>
#include <ovTasks/SchedulerTask.h>
#include <ovTasks/ThreadSubmittedWork.h>

namespace ovVeldris {
class LogManager;
}

namespace ovTasksWrap {

class LuaSchedulerTask;
class TaskHandle;

/// How the queue of a thread reaches a task that a script owns: it never outlives the task unnoticed.
struct TaskLink {
    std::mutex mutex; ///< held while the task works
    LuaSchedulerTask* task = nullptr;
};

/// A function of a script that runs in the environment of another thread, with what it needs and gives.
///
/// Belongs to the environment that made it, and so to one thread, but between its submission and the end of
/// its work to the thread that does it. The destructor waits for that end; a task that only waits in a queue
/// then does nothing when its turn comes.
class LuaSchedulerTask : public ovTasks::SchedulerTask {
public:
    /// @param creationEnvironment of the script that makes the task
    /// @param logManager not owned, outlives the task; null: failures of the script are not told
    LuaSchedulerTask(ovScripts::Environment* creationEnvironment, ovVeldris::LogManager* logManager);
    LuaSchedulerTask(const LuaSchedulerTask&) = delete;
    LuaSchedulerTask& operator=(const LuaSchedulerTask&) = delete;
    ~LuaSchedulerTask() override;

    /// Executes the initialisation script, and then the function, in the execution environment. Failures of
    /// either are logged and end the work.
    void work() override;

    ovScripts::Environment* getCreationEnvironment() const { return _creationEnvironment; }

    /// Writes the function down. @return whether it could be; else the environment knows why
    bool setWorkFunction(const ovScripts::ScriptObjectReference& function);
    /// @param script not owned; null for none. Kept alive by the reference until the task is submitted, which
    ///        takes a copy
    void setInitScript(ovScripts::Script* script, ovScripts::ScriptObjectReference reference);

    /// The buffers and objects that go with the task. Scripts of both threads hold them; the last one lets
    /// them go.
    ovScripts::SharedUserData inputBinaryData;
    ovScripts::SharedUserData outputBinaryData;
    ovMemory::Buffer<ovScripts::SharedUserData> inputUserData;
    ovMemory::Buffer<ovScripts::SharedUserData> outputUserData;

    /// Tells that a script asked for an object past the end.
    void logMissing(int64_t index, std::size_t count);

    /// Gets ready for another thread. @param current what its scripts see as the task while it works
    void prepare(ovScripts::Environment* executionEnvironment, TaskHandle* current);
    const std::shared_ptr<TaskLink>& getLink() const { return _link; }

    /// What the thread said when the task was handed over; nothing before.
    const std::optional<ovTasks::ThreadSubmittedWork>& getSubmittedWork() const { return _submittedWork; }
    void setSubmittedWork(ovTasks::ThreadSubmittedWork work) { _submittedWork = std::move(work); }
    /// Whether a thread has the task: it may not be looked at.
    bool isAway() const { return _submittedWork && !_submittedWork->isOver(); }

private:
    bool _runInitScript();
    void _callWorkFunction(const ovScripts::ScriptObjectReference& function);
    void _logFailure(const ovScripts::ExecutionResult& result);
    void _log(ovMemory::StringView message, ovMemory::StringView sender);

    ovScripts::Environment* _creationEnvironment;
    ovScripts::Environment* _executionEnvironment = nullptr;
    ovMemory::Buffer<unsigned char> _workFunc;
    ovScripts::Script* _initScript = nullptr;
    ovScripts::ScriptObjectReference _initScriptRef;
    std::optional<ovScripts::Script> _initScriptCopy;
    ovMemory::Buffer<ovScripts::FunctionParameter> _resultSlot;
    ovVeldris::LogManager* _logManager;
    TaskHandle* _current = nullptr;
    std::shared_ptr<TaskLink> _link;
    std::optional<ovTasks::ThreadSubmittedWork> _submittedWork;
};

/// What scripts hold as an ovTasks.Task: one that they own, or the one that their thread does at the moment.
class TaskHandle {
public:
    /// Holds nothing.
    TaskHandle() = default;
    explicit TaskHandle(ovMemory::UniquePtr<LuaSchedulerTask> task)
        : _owned(std::move(task))
        , _task(_owned.get()) {}

    /// Null where nothing is held.
    LuaSchedulerTask* get() const { return _task; }
    /// Shows a task of somebody else. Null: none any more.
    void show(LuaSchedulerTask* task) { _task = task; }

private:
    ovMemory::UniquePtr<LuaSchedulerTask> _owned;
    LuaSchedulerTask* _task = nullptr;
};

} // namespace ovTasksWrap
