// Groups of threads in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldris {
class LogManager;
}

namespace ovTasksWrap {

/// Binds LuaScheduler as ovTasks.Scheduler.
class SchedulerWrapper {
public:
    /// @param logManager not owned, outlives the environment; null: nothing is logged
    static void updateEnvironment(ovScripts::Environment* environment, ovVeldris::LogManager* logManager);
};

} // namespace ovTasksWrap
