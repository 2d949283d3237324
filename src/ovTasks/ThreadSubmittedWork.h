// What whoever submits a task keeps of it.
#pragma once

#include <chrono>
#include <memory>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <ovTasks/TaskState.h>

namespace ovTasks {

namespace detail {
class WorkRecord;
}

/// A view of a task that was handed to a Thread or a Scheduler, which owns the task. It outlives both:
/// nothing dangles when they are destroyed, and destroying the view waits for nothing. Copies see the same
/// task. Any thread may ask.
class OV_API ThreadSubmittedWork {
public:
    /// For Thread and Scheduler.
    explicit ThreadSubmittedWork(std::shared_ptr<const detail::WorkRecord> record);

    /// How far the task is at this moment.
    TASK_STATE getState() const;

    /// Whether the work is over, whichever way: the task is neither queued nor running, and will not be
    /// again. What the work wrote can be read then.
    bool isOver() const;

    /// The line that was reported when the task failed; empty otherwise.
    ovMemory::String getFailure() const;

    /// Waits until the work is over, at most for the time given, and returns whether it is. There is no
    /// waiting without a limit, since the task may belong to a thread that nobody runs.
    bool waitFor(std::chrono::milliseconds timeout) const;

private:
    std::shared_ptr<const detail::WorkRecord> _record;
};

} // namespace ovTasks
