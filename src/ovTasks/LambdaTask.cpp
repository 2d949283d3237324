#include <ovTasks/LambdaTask.h>

#include <utility>

namespace ovTasks {

LambdaTask::LambdaTask() = default;

LambdaTask::LambdaTask(std::function<void()> asyncWork)
    : _asyncWork(std::move(asyncWork)) {}

LambdaTask::~LambdaTask() = default;

void LambdaTask::setAsyncWorkFunction(std::function<void()> function) {
    _asyncWork = std::move(function);
}

void LambdaTask::work() {
    if (_asyncWork)
        _asyncWork();
}

} // namespace ovTasks
