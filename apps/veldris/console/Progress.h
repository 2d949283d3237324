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
/// share is known, how long it will still take at the same pace.
/// @param share of the step that is done, 0 to 1; 0: not known
ovMemory::String progressText(ovMemory::StringView step, double seconds, double share);

/// Times the steps of a run, which follow each other without a gap, and shows the one that lasts on a
/// terminal. A thread of its own draws the line, so that nobody who works has to.
class Progress {
public:
    /// @param isShown whether standard error is a terminal and nobody reads JSON from it
    explicit Progress(bool isShown);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Ends the step before, and begins one. Steps of one name are one.
    void step(ovMemory::StringView name);
    /// The share of the step that is done, 0 to 1.
    void share(double done);
    /// Takes the line away before something else is printed; it comes back while work goes on.
    void clearLine();

    /// The steps until now, the one that lasts included, in the order in which they began.
    ovMemory::Buffer<StepTime> getSteps() const;

private:
    using Clock = std::chrono::steady_clock;
    void _endStep();
    void _show();
    void _clear();

    const bool _isShown;
    mutable std::mutex _mutex;
    std::condition_variable _ended;
    bool _isOver = false;
    bool _hasLine = false;
    ovMemory::String _name = "starting";
    double _share = 0.0;
    Clock::time_point _start = Clock::now();
    ovMemory::Buffer<StepTime> _steps;
    std::thread _painter; // last: it uses all of the above
};

} // namespace veldris
