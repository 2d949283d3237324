// A library started for one run of the program.
#pragma once

#include <ovLog/Logger.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/Configuration.h>
#include <veldris/console/Progress.h>

namespace ovGraphics {
class System;
}
namespace ovVeldris {
class System;
}

namespace veldris {

/// Options of every subcommand that draws.
struct DrawingOptions {
    ovMemory::String language = "glsl"; ///< glsl or hlsl
    ovMemory::String device = {};       ///< empty, a number, or "software"
    ovMemory::String cache = {};        ///< folder of compiled programs
    bool noCache = false;
    bool timings = false;
    bool json = false;
    double time = 0.0; ///< seconds that effects which change with the time are drawn at
};

/// The graphics configuration of the options. @return false with one line in error when a value is wrong
bool toConfiguration(const DrawingOptions& options, ovGraphics::Configuration& configuration,
                     ovMemory::String& error);

/// Where compiled programs are kept when the user names no folder: "veldris" in the user's cache folder;
/// empty when there is none.
ovMemory::String defaultCacheFolder();

/// Collects what the library reports, so that a command can end with one clear line.
class CollectingLogger : public ovLog::Logger {
public:
    void log(ovLog::StringView message, ovLog::StringView sender) override;
    /// The reports since the last call, joined by "; ".
    ovMemory::String take();
    /// The reports since the last call, one by one.
    ovMemory::Buffer<ovMemory::String> takeLines();

private:
    ovMemory::Buffer<ovMemory::String> _lines;
};

/// An initialised library.
class Session {
public:
    /// @param progress of the run, borrowed; null: nobody asks
    explicit Session(Progress* progress = nullptr);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The time stands still, so that pictures repeat exactly.
    /// @return false with one line in error when no device can be opened
    bool open(const DrawingOptions& options, ovMemory::String& error);
    /// The same with the system that is one per process, which scripts reach by name. It ends with this
    /// object.
    bool openSingleton(const DrawingOptions& options, ovMemory::String& error);

    ovVeldris::System& getSystem() { return *_system; }
    ovGraphics::System& getGraphics();
    CollectingLogger& getLogger() { return _logger; }
    /// For TimedPart, which takes null.
    Progress* getProgress() const { return _progress; }

private:
    bool _start(const DrawingOptions& options, ovMemory::String& error);

    Progress* _progress;
    CollectingLogger _logger;
    ovMemory::UniquePtr<ovVeldris::System> _ownSystem;
    ovVeldris::System* _system = nullptr;
};

} // namespace veldris
