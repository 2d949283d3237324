#include <ovTasks/detail/Workers.h>

#include <pthread.h>
#include <system_error>
#include <utility>

namespace ovTasks::detail {

namespace {

void nameThisThread(const ovMemory::String& name) {
    constexpr std::size_t LONGEST_NAME = 15; // what Linux takes, without the final zero
    pthread_setname_np(pthread_self(), name.substr(0, LONGEST_NAME).c_str());
}

} // namespace

Workers::Workers(std::size_t count, WorkerSettings settings, WorkQueue::DONE done)
    : _count(count)
    , _queue(std::make_shared<WorkQueue>(std::move(settings), done)) {}

Workers::~Workers() {
    end();
}

void Workers::end() {
    _queue->refuse();
    stop();
    if (_queue->isCalledByWorker()) {
        const std::lock_guard lock(_control); // the run() that started this thread may not have returned yet
        _endThreads();
    }
    while (std::optional<Work> work = _queue->takeDone())
        destroyAs(TASK_STATE::DROPPED, std::move(*work));
}

std::shared_ptr<const WorkRecord> Workers::add(ovMemory::UniquePtr<Task> task, int priority) {
    if (task)
        return _queue->add(std::move(task), priority);
    const WorkerSettings& settings = _queue->getSettings();
    report(settings, "'" + settings.name +
                         "' was given a null pointer instead of a task, and queued nothing. Give it a task.");
    const auto record = std::make_shared<WorkRecord>();
    record->become(TASK_STATE::DROPPED);
    return record;
}

bool Workers::run() {
    if (_queue->isCalledByWorker())
        return _queue->isOpen();
    const std::lock_guard lock(_control);
    if (_queue->isOpen())
        return true;
    _endThreads(); // one that was stopped by its own task
    _startThreads();
    return !_threads.empty();
}

void Workers::_startThreads() {
    _queue->open();
    ovMemory::String reason;
    try {
        while (_threads.size() < _count)
            _threads.emplace_back([queue = _queue] {
                nameThisThread(queue->getSettings().name);
                queue->work();
            });
    } catch (const std::system_error& error) {
        reason = error.what();
    }
    if (!_threads.empty())
        return; // fewer than asked for do the same, only later
    _queue->close();
    const WorkerSettings& settings = _queue->getSettings();
    report(settings, "'" + settings.name + "' could not start a thread: " + reason +
                         ". Its tasks wait; end other threads and run it again.");
}

void Workers::stop() {
    if (_queue->isCalledByWorker()) {
        _queue->close();
    } else {
        const std::lock_guard lock(_control); // a run() in between would leave threads that nobody ends
        _queue->close();
        _endThreads();
    }
    // After the threads have ended, so that what their last tasks added goes too; and without the lock, since
    // destructors of tasks may call anything.
    for (Work& work : _queue->takeWaiting())
        destroyAs(TASK_STATE::DROPPED, std::move(work));
}

void Workers::_endThreads() {
    for (std::thread& thread : _threads) {
        if (thread.get_id() == std::this_thread::get_id())
            thread.detach();
        else
            thread.join();
    }
    _threads.clear();
}

} // namespace ovTasks::detail
