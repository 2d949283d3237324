// Several threads that share tasks, and hand them back to their host.
#pragma once

#include <ovTasks/SchedulerTask.h>
#include <ovTasks/ThreadSubmittedWork.h>
#include <ovTasks/WorkerSettings.h>

namespace ovTasks {

namespace detail {
class Workers;
}

/// Does tasks on several threads; what follows from them, on the thread of the host that collects them.
///
/// The task of the greatest priority is begun next, and of equal ones that which was added first. Tasks are
/// collected in the order in which their work ended. A collected task is destroyed by the collecting thread,
/// behind its second half. Tasks that are never done or collected are destroyed by stop() or the destructor,
/// on the thread that calls it, and their second half is left out. Each is destroyed exactly once.
///
/// Any thread may call the methods, also a task.
class OV_API Scheduler {
public:
    /// Starts nothing; tasks wait until run(). Without a count of threads there is one for each core but the
    /// host's, and at least one.
    explicit Scheduler(std::size_t threadCount = 0, WorkerSettings settings = {});
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    /// Stops as stop() does, and destroys tasks that nobody collected; they count as DROPPED.
    ~Scheduler();

    /// Queues a task. Null is refused with one line to the receiver of failures, and the view says DROPPED.
    ThreadSubmittedWork addTask(ovMemory::UniquePtr<SchedulerTask> task, int priority = 0);

    /// Starts the threads, as Thread::run() does. Fewer than asked for do when the system gives no more.
    bool run();

    /// Lets running tasks come to their end, waits for them, and destroys the tasks that wait. Those whose
    /// work is done can still be collected. Called by a task, it does not wait.
    void stop();

    /// Does the second half of each task whose work had ended before the call, and destroys it. Waits for
    /// nothing. Returns how many there were. Tasks that failed have no second half and count too.
    std::size_t collect();

    /// Waits and collects until no task is left, also of those that are added meanwhile. False when tasks
    /// remain because the scheduler does not run or is stopped, and at once when a task of it asks.
    bool finishAll();

    /// How many tasks wait or are being done.
    std::size_t getPendingCount() const;
    /// How many tasks can be collected.
    std::size_t getCollectableCount() const;
    /// Whether no task is left.
    bool isIdle() const;
    /// Whether run() was called, and stop() was not since.
    bool isRunning() const;

private:
    ovMemory::UniquePtr<detail::Workers> _workers;
};

} // namespace ovTasks
