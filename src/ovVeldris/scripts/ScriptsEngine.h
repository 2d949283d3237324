// The scripting side of a system.
#pragma once

#include <ovCommon/Api.h>

namespace ovVeldris {

class System;

/// Starts and ends scripting for one System. It has no scripting environment so far, so starting cannot fail.
class OV_API ScriptsEngine {
public:
    /// @param system not owned, outlives this object
    explicit ScriptsEngine(System* system);
    ScriptsEngine(const ScriptsEngine&) = delete;
    ScriptsEngine& operator=(const ScriptsEngine&) = delete;
    /// shutdown().
    ~ScriptsEngine();

    /// @return whether scripting started
    bool initialize();
    /// Ends scripting; may be repeated.
    void shutdown();
    /// Between a successful initialize() and shutdown().
    bool getIsInitialized() const { return _isInitialized; }

    System* getSystem() const { return _system; }

private:
    System* _system;
    bool _isInitialized = false;
};

} // namespace ovVeldris
