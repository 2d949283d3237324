#include <ovTasks/detail/WorkRecord.h>

#include <algorithm>
#include <utility>

namespace ovTasks::detail {

namespace {

// The longest time that is really waited for: a time point behind it could not be represented.
constexpr std::chrono::milliseconds LONGEST_WAIT = std::chrono::hours(24 * 365);

} // namespace

void WorkRecord::become(TASK_STATE state, ovMemory::String failure) {
    const std::lock_guard lock(_mutex);
    _state = state;
    _failure = std::move(failure);
    _over.notify_all();
}

TASK_STATE WorkRecord::getState() const {
    const std::lock_guard lock(_mutex);
    return _state;
}

ovMemory::String WorkRecord::getFailure() const {
    const std::lock_guard lock(_mutex);
    return _failure;
}

bool WorkRecord::waitFor(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(_mutex);
    const auto time = std::clamp(timeout, std::chrono::milliseconds(0), LONGEST_WAIT);
    return _over.wait_for(lock, time, [this] { return isOver(_state); });
}

} // namespace ovTasks::detail
