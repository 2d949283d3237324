// Objects on their way between environments.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovScriptsWrap {

/// Binds the global functions "serialize", "serializeForwardOwnership" and "deserialize" to the environment.
class EnvironmentWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovScriptsWrap
