// A task on its way.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <ovMemory/Memory.h>
#include <ovTasks/Task.h>
#include <ovTasks/WorkerSettings.h>
#include <ovTasks/detail/WorkRecord.h>

namespace ovTasks::detail {

/// A submitted task with what is known of it.
struct Work {
    ovMemory::UniquePtr<Task> task;
    std::shared_ptr<WorkRecord> record;
    uint64_t number = 0; ///< of its submission, from 1
    /// The reported line when the work, or what follows it, ended by an exception.
    ovMemory::String failure;
};

/// The state at the end of a task that was done: FAILED when there is a line.
inline TASK_STATE endOf(const Work& work) {
    return work.failure.empty() ? TASK_STATE::FINISHED : TASK_STATE::FAILED;
}

/// Calls a part of a task; where that ends by an exception, reports the line and keeps it in the work.
OV_API void callGuarded(const WorkerSettings& settings, Work& work, ovMemory::StringView part,
                        const std::function<void()>& function);

/// Reports one line to the receiver of the settings.
OV_API void report(const WorkerSettings& settings, const ovMemory::String& line);

/// Destroys the task on this thread, if it is still there, and then tells its end.
OV_API void destroyAs(TASK_STATE end, Work work);

} // namespace ovTasks::detail
