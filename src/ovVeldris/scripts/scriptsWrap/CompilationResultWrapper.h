// Ends of compilations in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovScriptsWrap {

/// Binds ovScripts::CompilationResult.
class CompilationResultWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovScriptsWrap
