#include <ovTasks/detail/WorkQueue.h>

#include <utility>

namespace ovTasks::detail {

namespace {

// The queue whose tasks this thread does.
thread_local const WorkQueue* servedQueue = nullptr;

} // namespace

WorkQueue::WorkQueue(WorkerSettings settings, DONE done)
    : _settings(std::move(settings))
    , _keeps(done == DONE::KEPT) {}

WorkQueue::~WorkQueue() {
    // Kept tasks are left only where a task destroyed the owner of the queue: those that ended after that.
    for (Work& work : _done)
        destroyAs(TASK_STATE::DROPPED, std::move(work));
}

std::shared_ptr<const WorkRecord> WorkQueue::add(ovMemory::UniquePtr<Task> task, int priority) {
    Work work{std::move(task), std::make_shared<WorkRecord>(), 0, {}};
    const std::shared_ptr<const WorkRecord> record = work.record;
    {
        const std::lock_guard lock(_mutex);
        if (!_refuses) {
            work.number = ++_submitted;
            _waiting.emplace(Rank(-int64_t(priority), work.number), std::move(work));
            _toDo.notify_one();
            return record;
        }
    }
    destroyAs(TASK_STATE::DROPPED, std::move(work));
    return record;
}

void WorkQueue::work() {
    servedQueue = this;
    std::unique_lock lock(_mutex);
    while (true) {
        _toDo.wait(lock, [this] { return !_isOpen || !_waiting.empty(); });
        if (!_isOpen)
            return;
        Work next = std::move(_waiting.extract(_waiting.begin()).mapped());
        ++_running;
        lock.unlock();
        next.record->become(TASK_STATE::RUNNING);
        callGuarded(_settings, next, "work", [&next] { next.task->work(); });
        if (!_keeps)
            next.task.reset(); // what it does when it goes must find the queue unlocked
        lock.lock();
        _settle(std::move(next));
    }
}

// Counts and tells in one step, so that who learns of the end from one of them finds the other one right.
void WorkQueue::_settle(Work work) {
    if (_keeps) {
        work.record->become(TASK_STATE::WORKED);
        _done.push_back(std::move(work));
    } else {
        const TASK_STATE end = endOf(work);
        destroyAs(end, std::move(work));
    }
    --_running;
    if (_countPending() == 0)
        _settled.notify_all();
}

void WorkQueue::open() {
    const std::lock_guard lock(_mutex);
    _isOpen = true;
}

void WorkQueue::close() {
    const std::lock_guard lock(_mutex);
    _isOpen = false;
    _toDo.notify_all();
    _settled.notify_all();
}

bool WorkQueue::isOpen() const {
    const std::lock_guard lock(_mutex);
    return _isOpen;
}

void WorkQueue::refuse() {
    const std::lock_guard lock(_mutex);
    _refuses = true;
}

ovMemory::Buffer<Work> WorkQueue::takeWaiting() {
    const std::lock_guard lock(_mutex);
    ovMemory::Buffer<Work> works;
    works.reserve(_waiting.size());
    for (auto& [rank, work] : _waiting)
        works.push_back(std::move(work));
    _waiting.clear();
    return works;
}

std::optional<Work> WorkQueue::takeDone() {
    const std::lock_guard lock(_mutex);
    if (_done.empty())
        return std::nullopt;
    std::optional<Work> work = std::move(_done.front());
    _done.pop_front();
    return work;
}

std::size_t WorkQueue::getDoneCount() const {
    const std::lock_guard lock(_mutex);
    return _done.size();
}

bool WorkQueue::isIdle() const {
    const std::lock_guard lock(_mutex);
    return _countPending() + _done.size() == 0;
}

std::size_t WorkQueue::getPendingCount() const {
    const std::lock_guard lock(_mutex);
    return _countPending();
}

bool WorkQueue::waitForAll() const {
    if (isCalledByWorker())
        return false; // the task that asks is pending itself
    std::unique_lock lock(_mutex);
    _settled.wait(lock, [this] { return _countPending() == 0 || !_isOpen; });
    return _countPending() == 0;
}

bool WorkQueue::isCalledByWorker() const {
    return servedQueue == this;
}

} // namespace ovTasks::detail
