// The steps of a run: what is being done, how long each took, and what is shown of it while it lasts.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ovMemory/Memory.h>
#include <thread>

namespace veldris {

/// A step that ended.
struct StepTime {
    ovMemory::String name;
    double milliseconds = 0.0;
};

/// What a terminal shows of a step: nothing in its first second; then how long it has taken, or, where its
/// share is known, how long it will still take at the same pace. Of a step without a name, as waiting for a
/// person, nothing.
/// @param share of the step that is done, 0 to 1; 0: not known
ovMemory::String progressText(ovMemory::StringView step, double seconds, double share);

/// Times the steps of a run, which follow each other without a gap, and shows the one that lasts on a
/// terminal. A thread of its own draws the line, so that nobody who works has to.
class Progress {
public:
    using Clock = std::chrono::steady_clock;

    /// @param isShown whether standard error is a terminal and nobody reads JSON from it
    /// @param start of the first step
    explicit Progress(bool isShown, Clock::time_point start = Clock::now());
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Ends the step before, and begins one. Steps of one name are one.
    void step(ovMemory::StringView name);
    /// Counts the time from here on for another step, while the one that is shown goes on.
    /// @return whose time it was before
    ovMemory::String part(ovMemory::StringView name);
    /// The share of the step that is shown, 0 to 1.
    void share(double done);
    /// Takes the line away before something else is printed; it comes back while work goes on.
    void clearLine();

    /// The steps until now, the one that lasts included, in the order in which they began.
    ovMemory::Buffer<StepTime> getSteps() const;

private:
    void _time(ovMemory::StringView name);
    void _show();
    void _clear();

    const bool _isShown;
    mutable std::mutex _mutex;
    std::condition_variable _ended;
    bool _isOver = false;
    bool _hasLine = false;
    ovMemory::String _shown = "starting";
    Clock::time_point _shownSince;
    double _share = 0.0;
    ovMemory::String _timed = _shown;
    Clock::time_point _timedSince;
    ovMemory::Buffer<StepTime> _steps;
    std::thread _painter; // last: it uses all of the above
};

/// Counts the time of a scope for another step.
class TimedPart {
public:
    /// @param progress null: nobody asks
    TimedPart(Progress* progress, ovMemory::StringView step)
        : _progress(progress)
        , _outer(progress ? progress->part(step) : ovMemory::String()) {}
    ~TimedPart() {
        if (_progress)
            _progress->part(_outer);
    }
    TimedPart(const TimedPart&) = delete;
    TimedPart& operator=(const TimedPart&) = delete;

private:
    Progress* _progress;
    ovMemory::String _outer;
};

} // namespace veldris
