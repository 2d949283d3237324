#include <ovTasks/SchedulerTask.h>

#include <utility>

namespace ovTasks {

SchedulerTask::SchedulerTask() = default;
SchedulerTask::~SchedulerTask() = default;

void SchedulerTask::setSyncWorkFunction(std::function<void()> function) {
    _syncWork = std::move(function);
}

void SchedulerTask::finish() const {
    if (_syncWork)
        _syncWork();
}

} // namespace ovTasks
