// What an environment lets scripts do.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ovScripts {

/// What an environment lets scripts do. By default scripts reach no file, no process and nothing that breaks
/// the interpreter, and have no limits.
struct EnvironmentOptions {
    /// Opens io, os, package and require: files, processes, native modules. Also loadfile and dofile, which
    /// take texts only.
    bool filesAndProcesses = false;
    /// Opens the debug library, with which a script can reach everything and crash the interpreter.
    bool debugLibrary = false;
    /// Whether the environment belongs to another thread than the one that renders. Types that are declared
    /// for the render thread refuse every use there.
    bool isWorker = false;
    /// Whether Environment::interrupt() ends scripts. They run slower then, as under a limit of steps or
    /// time.
    bool isInterruptible = false;

    /// Bytes that the interpreter and the objects owned by scripts may hold; 0: no limit. A script that asks
    /// for more gets the error "not enough memory". Of objects counts what their types tell, see
    /// UserType::setSizeOf().
    std::size_t memoryLimit = 0;
    /// Instructions of the interpreter that scripts may execute in all; 0: no limit.
    uint64_t stepLimit = 0;
    /// Seconds of wall time from Environment::setEnvironmentFor() on, or from the last
    /// Environment::restartLimits(); 0: no limit. Looked at between instructions: a single call into C, as of
    /// string.find with a pattern that explodes, and finalisers end by themselves or not at all. Whoever runs
    /// what they do not trust gives it a process of its own and ends that.
    double timeLimit = 0;
};

} // namespace ovScripts
