#include <ovTasks/Scheduler.h>

#include <algorithm>
#include <ovTasks/detail/Workers.h>
#include <utility>

namespace ovTasks {

namespace {

std::size_t countThreads(std::size_t asked) {
    return asked > 0 ? asked : std::max(2u, std::thread::hardware_concurrency()) - 1;
}

} // namespace

Scheduler::Scheduler(std::size_t threadCount, WorkerSettings settings)
    : _workers(std::make_unique<detail::Workers>(countThreads(threadCount), std::move(settings),
                                                 detail::WorkQueue::DONE::KEPT)) {}

Scheduler::~Scheduler() {
    _workers->end();
}

ThreadSubmittedWork Scheduler::addTask(ovMemory::UniquePtr<SchedulerTask> task, int priority) {
    return ThreadSubmittedWork(_workers->add(std::move(task), priority));
}

bool Scheduler::run() {
    return _workers->run();
}

void Scheduler::stop() {
    _workers->stop();
}

std::size_t Scheduler::collect() {
    detail::WorkQueue& queue = _workers->getQueue();
    std::size_t count = 0;
    // As many as there are now: a second half may submit tasks whose work ends before this loop does.
    for (const std::size_t available = queue.getDoneCount(); count < available; ++count) {
        std::optional<detail::Work> work = queue.takeDone();
        if (!work)
            break; // a second half has collected the rest
        // Only tasks of this type come in.
        const auto& task = static_cast<const SchedulerTask&>(*work->task);
        if (work->failure.empty())
            detail::callGuarded(queue.getSettings(), *work, "second half", [&task] { task.finish(); });
        const TASK_STATE end = detail::endOf(*work);
        detail::destroyAs(end, std::move(*work));
    }
    return count;
}

bool Scheduler::finishAll() {
    detail::WorkQueue& queue = _workers->getQueue();
    if (queue.isCalledByWorker())
        return false;
    bool goesOn = true;
    while (goesOn && !queue.isIdle()) {
        goesOn = queue.waitForAll();
        collect();
    }
    return queue.isIdle();
}

std::size_t Scheduler::getPendingCount() const {
    return _workers->getQueue().getPendingCount();
}

std::size_t Scheduler::getCollectableCount() const {
    return _workers->getQueue().getDoneCount();
}

bool Scheduler::isIdle() const {
    return _workers->getQueue().isIdle();
}

bool Scheduler::isRunning() const {
    return _workers->getQueue().isOpen();
}

} // namespace ovTasks
