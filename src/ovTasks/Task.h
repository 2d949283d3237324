// What threads do: the base of all tasks.
#pragma once

#include <ovCommon/Api.h>

namespace ovTasks {

/// A piece of work that a thread does once. Whoever runs it owns it and destroys it.
class OV_API Task {
public:
    Task() = default;
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    virtual ~Task();

    /// Does the work, on a thread that the task does not choose. An exception ends the work: it is reported
    /// as one line, and the thread goes on with the next task.
    virtual void work() = 0;
};

} // namespace ovTasks
