// Scripts in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovScriptsWrap {

/// Binds ovScripts::Script; "call" executes it in the environment that was set up.
class ScriptWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovScriptsWrap
