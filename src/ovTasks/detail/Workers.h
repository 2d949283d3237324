// The threads that do the tasks of one queue.
#pragma once

#include <ovTasks/detail/WorkQueue.h>
#include <thread>

namespace ovTasks::detail {

/// A queue and its threads, started and stopped by the owner.
class OV_API Workers {
public:
    Workers(std::size_t count, WorkerSettings settings, WorkQueue::DONE done);
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    /// As end().
    ~Workers();
    /// Stops for good, and destroys what waits and what is kept. In a task of its own it waits for nobody:
    /// that thread ends by itself. Owners call it in their destructors, so that tasks that still run find
    /// them whole.
    void end();

    /// Null is reported and refused.
    std::shared_ptr<const WorkRecord> add(ovMemory::UniquePtr<Task> task, int priority);

    bool run();
    void stop();
    WorkQueue& getQueue() const { return *_queue; }

private:
    void _startThreads();
    void _endThreads();

    const std::size_t _count;
    // Shared with the threads: a task may destroy the object whose thread it runs on.
    const std::shared_ptr<WorkQueue> _queue;
    std::mutex _control; // of run() and stop() against each other
    ovMemory::Buffer<std::thread> _threads;
};

} // namespace ovTasks::detail
