// The tasks of a Thread or a Scheduler, and the loop of those who do them.
#pragma once

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <ovTasks/detail/Work.h>

namespace ovTasks::detail {

/// Tasks in the order of their priorities, and those of one priority in the order of their submission. Shared
/// by the owner and its workers; every method may be called by any thread.
class OV_API WorkQueue {
public:
    /// What happens to a task whose work has ended.
    enum class DONE {
        DESTROYED, ///< at once, on the thread that did it
        KEPT       ///< until somebody takes it
    };

    WorkQueue(WorkerSettings settings, DONE done);
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;
    ~WorkQueue();

    /// Appends a task. When the queue takes none any more, destroys it here and now.
    std::shared_ptr<const WorkRecord> add(ovMemory::UniquePtr<Task> task, int priority);

    /// The loop of a worker: does tasks until the queue is closed.
    void work();

    /// Lets workers work until close().
    void open();
    /// Sends the workers home, each after the task that it does now.
    void close();
    bool isOpen() const;
    /// Takes no further task, for ever.
    void refuse();

    /// The waiting tasks, in their order; afterwards there are none.
    ovMemory::Buffer<Work> takeWaiting();

    /// The task that is kept longest, if there is one.
    std::optional<Work> takeDone();
    std::size_t getDoneCount() const;
    /// Whether no task waits, is being done or is kept.
    bool isIdle() const;

    /// How many wait or are done at the moment.
    std::size_t getPendingCount() const;
    /// Waits until none is pending or the queue is closed; returns whether none is pending.
    bool waitForAll() const;

    /// Whether the calling thread is a worker of this queue, and so in a task of it.
    bool isCalledByWorker() const;

    const WorkerSettings& getSettings() const { return _settings; }

private:
    // The greatest priority first: its negation, in a type that holds all of them.
    using Rank = std::pair<int64_t, uint64_t>;

    std::size_t _countPending() const { return _waiting.size() + _running; }
    void _settle(Work work);

    const WorkerSettings _settings;
    const bool _keeps;
    mutable std::mutex _mutex;
    std::condition_variable _toDo;
    mutable std::condition_variable _settled;
    std::map<Rank, Work> _waiting;
    std::deque<Work> _done;
    uint64_t _submitted = 0;
    std::size_t _running = 0;
    bool _isOpen = false;
    bool _refuses = false;
};

} // namespace ovTasks::detail
