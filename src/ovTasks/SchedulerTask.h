// Tasks of two halves: work on another thread, and an end on the thread of the host.
#pragma once

#include <functional>
#include <ovTasks/Task.h>

namespace ovTasks {

/// A task that a Scheduler can run: its work is done by a worker, and what follows from it by the thread that
/// collects it. A Thread takes such tasks too, and then leaves the second half out.
class OV_API SchedulerTask : public Task {
public:
    SchedulerTask();
    ~SchedulerTask() override;

    /// What the collecting thread does when the work is done; nothing by default. It does not follow work
    /// that ended by an exception. Its own exceptions are reported as those of the work.
    void setSyncWorkFunction(std::function<void()> function);

    /// Does the second half; for the Scheduler.
    void finish() const;

private:
    std::function<void()> _syncWork;
};

} // namespace ovTasks
