#include <veldris/console/Progress.h>

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

constexpr double SHOWN_AFTER = 1.0; // seconds
constexpr std::chrono::milliseconds REPAINTED_AFTER{100};
constexpr double LEAST_SHARE = 0.02; // before, an estimate would jump

void addTo(Buffer<StepTime>& steps, const String& name, double milliseconds) {
    const auto known = std::ranges::find(steps, name, &StepTime::name);
    if (known == steps.end())
        steps.push_back({name, milliseconds});
    else
        known->milliseconds += milliseconds;
}

template <typename Duration>
double secondsOf(Duration duration) {
    return std::chrono::duration<double>(duration).count();
}

} // namespace

String progressText(StringView step, double seconds, double share) {
    if (seconds < SHOWN_AFTER || step.empty())
        return {};
    if (share < LEAST_SHARE)
        return fmt::format("{}, {:.0f} s", step, seconds);
    const double left = seconds * (1.0 - share) / share;
    return fmt::format("{}, {:.0f} %, about {:.0f} s left", step, 100.0 * share, left);
}

Progress::Progress(bool isShown, Clock::time_point start)
    : _isShown(isShown)
    , _shownSince(start)
    , _timedSince(start) {
    if (_isShown)
        _painter = std::thread([this] { _show(); });
}

Progress::~Progress() {
    {
        const std::lock_guard lock(_mutex);
        _isOver = true;
        _clear();
    }
    _ended.notify_all();
    if (_painter.joinable())
        _painter.join();
}

void Progress::step(StringView name) {
    const std::lock_guard lock(_mutex);
    _time(name);
    _shown = name;
    _shownSince = _timedSince;
    _share = 0.0;
}

String Progress::part(StringView name) {
    const std::lock_guard lock(_mutex);
    String before = _timed;
    _time(name);
    return before;
}

void Progress::share(double done) {
    const std::lock_guard lock(_mutex);
    _share = std::clamp(done, 0.0, 1.0);
}

void Progress::clearLine() {
    const std::lock_guard lock(_mutex);
    _clear();
}

Buffer<StepTime> Progress::getSteps() const {
    const std::lock_guard lock(_mutex);
    Buffer<StepTime> steps = _steps;
    addTo(steps, _timed, 1000.0 * secondsOf(Clock::now() - _timedSince));
    return steps;
}

void Progress::_time(StringView name) {
    const Clock::time_point now = Clock::now();
    addTo(_steps, _timed, 1000.0 * secondsOf(now - _timedSince));
    _timed = name;
    _timedSince = now;
}

void Progress::_show() {
    std::unique_lock lock(_mutex);
    String shown;
    while (!_ended.wait_for(lock, REPAINTED_AFTER, [this] { return _isOver; })) {
        const String text = progressText(_shown, secondsOf(Clock::now() - _shownSince), _share);
        if (text.empty() || (_hasLine && text == shown))
            continue;
        fmt::print(stderr, "\r\x1b[K{}", text);
        std::fflush(stderr);
        _hasLine = true;
        shown = text;
    }
}

void Progress::_clear() {
    if (!_hasLine)
        return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    _hasLine = false;
}

} // namespace veldris
