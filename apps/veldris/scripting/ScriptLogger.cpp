#include <veldris/scripting/ScriptLogger.h>

#include <cstdio>
#include <veldris/console/Console.h>

namespace veldris {

void ScriptLogger::log(ovLog::StringView message, ovLog::StringView sender) {
    const std::lock_guard lock(_mutex);
    if (sender != "ovVeldris::lua") {
        _console.warn(message);
        return;
    }
    _console.print(message);
    // Whoever reads a pipe follows a long script.
    std::fflush(stdout);
}

} // namespace veldris
