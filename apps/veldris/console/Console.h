// What a run of the program says.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovMemory/Memory.h>
#include <veldris/JsonText.h>
#include <veldris/console/Progress.h>

namespace veldris {

/// Results go to standard output, failures and warnings to standard error. In JSON each failure is a line
/// {"error": ...}, each kind of warning a line {"warning": ..., "count": ...}.
///
/// Warnings are gathered: those that differ only in numbers and quoted names are one kind, which is told
/// once, with the first of them as the example, when the run fails or ends.
class Console {
public:
    /// @param isJson whether messages are for machines @param start of the first step
    explicit Console(bool isJson, Progress::Clock::time_point start = Progress::Clock::now());

    /// The steps of the run, shown on a terminal while they last.
    Progress& getProgress() { return _progress; }
    /// Tells the share of the step that is done, for whoever does it. It must not outlive the console.
    ovCommon::WorkProgress getShare() {
        return [this](double share) { _progress.share(share); };
    }
    /// Begins a step of the run.
    void step(ovMemory::StringView name) { _progress.step(name); }
    /// The steps until now for a report of times; prints them as well, a line each, unless machines read.
    /// @return objects of "step" and "milliseconds"
    ovMemory::Buffer<JsonObject> reportSteps();

    /// Tells why the run failed, in one line. @return the exit status of a failure
    int fail(ovMemory::StringView message);
    /// Keeps a warning to be told, unless it is empty.
    void warn(ovMemory::StringView message);
    void warnEach(const ovMemory::Buffer<ovMemory::String>& messages);
    /// Prints a line of the result.
    void print(ovMemory::StringView line);

    /// What messages call a file from now on, in place of its path in quotes.
    void callFile(ovMemory::StringView path, ovMemory::StringView name);

    /// From here on standard output carries the picture itself, and the lines of the result go to standard
    /// error.
    void leaveOutputToData() { _outputIsData = true; }

    /// Tells the warnings, and writes out what standard output still holds.
    /// @return the status, or that of a failure when standard output could not take everything
    int finish(int status);

private:
    struct Warning {
        ovMemory::String kind;
        ovMemory::String example;
        unsigned int count = 1;
    };
    ovMemory::String _named(ovMemory::StringView message) const;
    void _tellWarnings();

    bool _isJson;
    Progress _progress;
    bool _outputIsData = false;
    ovMemory::Buffer<std::pair<ovMemory::String, ovMemory::String>> _names; ///< of paths in quotes
    ovMemory::Buffer<Warning> _warnings;
};

} // namespace veldris
