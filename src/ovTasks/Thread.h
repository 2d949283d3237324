// One thread and its queue of tasks.
#pragma once

#include <ovTasks/Task.h>
#include <ovTasks/ThreadSubmittedWork.h>
#include <ovTasks/WorkerSettings.h>

namespace ovTasks {

namespace detail {
class Workers;
}

/// A thread that does tasks one after another, in the order in which they were added. It owns them.
///
/// A task that was done is destroyed on the thread, right after its work. Tasks that are never done are
/// destroyed by stop() or the destructor, on the thread that calls it. Each is destroyed exactly once.
///
/// Any thread may call the methods, also a task of this thread.
class OV_API Thread {
public:
    /// Starts nothing; tasks wait until run().
    explicit Thread(WorkerSettings settings = {});
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    /// Stops as stop() does; tasks that are added meanwhile are destroyed at once. A task may destroy the
    /// thread that does it: the thread then ends by itself behind that task.
    ~Thread();

    /// Queues a task. It waits while the thread does not run. Null is refused with one line to the receiver
    /// of failures, and the view says DROPPED.
    ThreadSubmittedWork addTask(ovMemory::UniquePtr<Task> task);

    /// Starts the thread. Nothing when it runs already; afresh after stop(). False, with one line to the
    /// receiver of failures, when the system gives no further thread. A task cannot take back a stop():
    /// called by a task of this thread it only tells whether the thread will go on.
    bool run();

    /// Lets the running task come to its end, waits for it, and destroys the tasks that wait, in their order.
    /// Tasks that are added later wait for run(). Called by a task of this thread, it does not wait: the
    /// thread ends behind that task.
    void stop();

    /// Waits until all tasks are done and destroyed, also those that are added meanwhile. False when tasks
    /// remain because the thread does not run or is stopped, and at once when a task of this thread asks: it
    /// would wait for itself.
    bool waitForAll();

    /// How many tasks wait or are being done.
    std::size_t getPendingCount() const;
    /// Whether no task waits or is being done.
    bool isIdle() const { return getPendingCount() == 0; }
    /// Whether run() was called, and stop() was not since.
    bool isRunning() const;

private:
    ovMemory::UniquePtr<detail::Workers> _workers;
};

} // namespace ovTasks
