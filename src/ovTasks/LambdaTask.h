// Tasks made of functions.
#pragma once

#include <ovTasks/SchedulerTask.h>

namespace ovTasks {

/// A task whose work is a function. What the function holds is destroyed with the task, on the thread that
/// destroys it.
class OV_API LambdaTask : public SchedulerTask {
public:
    LambdaTask();
    /// With a function at once.
    explicit LambdaTask(std::function<void()> asyncWork);
    ~LambdaTask() override;

    /// What the thread does; nothing by default. Set it before the task is handed over.
    void setAsyncWorkFunction(std::function<void()> function);

    void work() override;

private:
    std::function<void()> _asyncWork;
};

} // namespace ovTasks
