// Names of script languages.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovScriptsWrap {

/// Binds the constants of ovScripts::INTERPRETER.
class InterpreterWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovScriptsWrap
