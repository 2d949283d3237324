// The scripting side of a system.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovScripts {
class Environment;
struct EnvironmentOptions;
} // namespace ovScripts

namespace ovVeldris {

class LogManager;
class System;

/// Holds one Lua environment with everything that the family offers scripts; docs/scripting.md lists it.
///
/// Belongs to the thread that drives rendering. Scripts on other threads have environments of their own, see
/// setupScriptsEnvironment().
class OV_API ScriptsEngine {
public:
    /// No environment yet. @param system not owned, outlives this object. Null: scripts then log nothing
    explicit ScriptsEngine(System* system);
    ScriptsEngine(const ScriptsEngine&) = delete;
    ScriptsEngine& operator=(const ScriptsEngine&) = delete;
    /// shutdown().
    ~ScriptsEngine();

    /// Makes a new environment with all declarations; one that was there is destroyed, with what its scripts
    /// own.
    /// @return true
    bool initialize();
    /// The same with options: what scripts may reach, and their limits.
    bool initialize(const ovScripts::EnvironmentOptions& options);
    /// Destroys the environment; may be repeated.
    void shutdown();
    /// Between initialize() and shutdown().
    bool getIsInitialized() const { return _environment != nullptr; }

    /// Declares everything that the family offers scripts, in any environment of Lua. A step that fails is
    /// logged and the next one goes on.
    /// @param logManager where scripts log to, not owned, outlives the environment; null: nowhere
    static void setupScriptsEnvironment(ovScripts::Environment* environment, LogManager* logManager);

    /// The environment; null before initialize() and after shutdown().
    ovScripts::Environment* getEnvironment() const { return _environment.get(); }
    System* getSystem() const { return _system; }

private:
    ovMemory::UniquePtr<ovScripts::Environment> _environment;
    System* _system;
};

} // namespace ovVeldris
