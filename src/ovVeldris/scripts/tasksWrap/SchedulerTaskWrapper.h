// Tasks in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldris {
class LogManager;
}

namespace ovTasksWrap {

/// Binds LuaSchedulerTask as ovTasks.Task.
class SchedulerTaskWrapper {
public:
    /// @param logManager not owned, outlives the environment; null: nothing is logged
    static void updateEnvironment(ovScripts::Environment* environment, ovVeldris::LogManager* logManager);
};

} // namespace ovTasksWrap
