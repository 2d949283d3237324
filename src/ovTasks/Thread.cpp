#include <ovTasks/Thread.h>

#include <ovTasks/detail/Workers.h>
#include <utility>

namespace ovTasks {

Thread::Thread(WorkerSettings settings)
    : _workers(
          std::make_unique<detail::Workers>(1, std::move(settings), detail::WorkQueue::DONE::DESTROYED)) {}

Thread::~Thread() {
    _workers->end();
}

ThreadSubmittedWork Thread::addTask(ovMemory::UniquePtr<Task> task) {
    return ThreadSubmittedWork(_workers->add(std::move(task), 0));
}

bool Thread::run() {
    return _workers->run();
}

void Thread::stop() {
    _workers->stop();
}

bool Thread::waitForAll() {
    return _workers->getQueue().waitForAll();
}

std::size_t Thread::getPendingCount() const {
    return _workers->getQueue().getPendingCount();
}

bool Thread::isRunning() const {
    return _workers->getQueue().isOpen();
}

} // namespace ovTasks
