#include <ovTasks/ThreadSubmittedWork.h>

#include <ovTasks/detail/WorkRecord.h>
#include <utility>

namespace ovTasks {

ThreadSubmittedWork::ThreadSubmittedWork(std::shared_ptr<const detail::WorkRecord> record)
    : _record(std::move(record)) {}

TASK_STATE ThreadSubmittedWork::getState() const {
    return _record->getState();
}

bool ThreadSubmittedWork::isOver() const {
    return detail::isOver(getState());
}

ovMemory::String ThreadSubmittedWork::getFailure() const {
    return _record->getFailure();
}

bool ThreadSubmittedWork::waitFor(std::chrono::milliseconds timeout) const {
    return _record->waitFor(timeout);
}

} // namespace ovTasks
