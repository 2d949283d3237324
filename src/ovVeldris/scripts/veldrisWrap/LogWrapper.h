// The log in scripts.
#pragma once

#include <ovCommon/Api.h>

namespace ovScripts {
class Environment;
}

namespace ovVeldris {
class LogManager;
}

namespace ovVeldrisWrap {

/// Binds the log: the global function "ovLogLine", and "print" through it.
class OV_API LogWrapper {
public:
    /// @param logManager not owned, outlives the environment; null: both functions do nothing
    static void updateEnvironment(ovScripts::Environment* environment, ovVeldris::LogManager* logManager);
};

} // namespace ovVeldrisWrap
