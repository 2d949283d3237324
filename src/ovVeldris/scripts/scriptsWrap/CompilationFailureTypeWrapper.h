// Names of reasons why a script was not compiled.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovScriptsWrap {

/// Binds the constants of ovScripts::COMPILATION_FAILURE_TYPE.
class CompilationFailureTypeWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovScriptsWrap
