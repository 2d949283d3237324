// Several threads that share tasks, for scripts.
#pragma once

#include <ovVeldris/scripts/tasksWrap/LuaThread.h>

namespace ovTasksWrap {

/// Some LuaThreads among which tasks are spread: each goes to the one that has the fewest. Belongs to the
/// environment that made it, as its threads do.
class LuaScheduler {
public:
    /// The most threads of one scheduler: each has an environment of some hundred kilobytes.
    static constexpr std::size_t MAX_THREADS = 256;

    /// @param threadCount 1 to MAX_THREADS; the other arguments as of LuaThread
    LuaScheduler(std::size_t threadCount, ovScripts::Environment* creationEnvironment,
                 ovVeldris::LogManager* logManager);
    LuaScheduler(const LuaScheduler&) = delete;
    LuaScheduler& operator=(const LuaScheduler&) = delete;

    std::size_t getThreadCount() const { return _threads.size(); }
    /// How many tasks wait or are being done; the set-up of each environment is one.
    std::size_t getPendingCount() const;

    // As of LuaThread.
    void addTask(LuaSchedulerTask& task, ovScripts::ScriptObjectReference reference);
    void releaseTaskRef(const LuaSchedulerTask* task);
    /// @return false when a thread could not be started
    bool run();

private:
    ovMemory::Buffer<ovMemory::UniquePtr<LuaThread>> _threads;
};

} // namespace ovTasksWrap
