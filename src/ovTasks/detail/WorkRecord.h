// What a task, its thread and those who wait for it share.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <ovTasks/TaskState.h>

namespace ovTasks::detail {

/// The state of one submitted task. Any thread may ask and wait.
class OV_API WorkRecord {
public:
    /// Sets the state, with the reason where it is FAILED, and wakes those who wait.
    void become(TASK_STATE state, ovMemory::String failure = {});

    TASK_STATE getState() const;
    ovMemory::String getFailure() const;

    /// Waits until the state is neither QUEUED nor RUNNING; false when the time is over before.
    bool waitFor(std::chrono::milliseconds timeout) const;

private:
    mutable std::mutex _mutex;
    mutable std::condition_variable _over;
    TASK_STATE _state = TASK_STATE::QUEUED;
    ovMemory::String _failure;
};

/// Whether no work is done in this state or after it.
constexpr bool isOver(TASK_STATE state) {
    return state != TASK_STATE::QUEUED && state != TASK_STATE::RUNNING;
}

} // namespace ovTasks::detail
