// What threads and schedulers are made with.
#pragma once

#include <functional>
#include <ovMemory/Memory.h>

namespace ovTasks {

/// Receives what went wrong in a task, one line without a line end. Called on the thread where it went wrong,
/// also on several at once.
using FailureReceiver = std::function<void(ovMemory::StringView line)>;

/// What a Thread or a Scheduler is made with.
struct WorkerSettings {
    /// Stands in messages, and with its first 15 bytes in debuggers and lists of threads.
    ovMemory::String name = "worker";
    /// Empty: failures go to the standard error stream.
    FailureReceiver onFailure;
};

} // namespace ovTasks
