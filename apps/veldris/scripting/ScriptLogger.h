// What scripts and the library say while a script runs.
#pragma once

#include <mutex>
#include <ovLog/Logger.h>

namespace veldris {

class Console;

/// Prints what scripts log, a line each, as soon as it comes; keeps what the library reports as warnings.
/// Scripts of several threads may log at once.
class ScriptLogger : public ovLog::Logger {
public:
    explicit ScriptLogger(Console& console)
        : _console(console) {}

    void log(ovLog::StringView message, ovLog::StringView sender) override;

private:
    Console& _console;
    std::mutex _mutex;
};

} // namespace veldris
