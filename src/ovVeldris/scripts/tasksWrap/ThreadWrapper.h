// Threads in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovVeldris {
class LogManager;
}

namespace ovTasksWrap {

/// Binds LuaThread as ovTasks.Thread.
class ThreadWrapper {
public:
    /// @param logManager not owned, outlives the environment; null: nothing is logged
    static void updateEnvironment(ovScripts::Environment* environment, ovVeldris::LogManager* logManager);
};

} // namespace ovTasksWrap
