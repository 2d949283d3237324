// How far a submitted task is.
#pragma once

#include <ovMemory/Enumeration.h>

namespace ovTasks {

/// How far a submitted task is. It goes down this list and never back; the last three are ends.
enum class TASK_STATE {
    QUEUED,   ///< waits for a thread
    RUNNING,  ///< a thread does the work
    WORKED,   ///< the work is done, and a Scheduler keeps the task until it is collected
    FINISHED, ///< done; the task is destroyed
    FAILED,   ///< ended by an exception; the task is destroyed
    DROPPED   ///< destroyed before it was done: the thread was stopped, or destroyed
};

inline constexpr ovMemory::EnumEntry<TASK_STATE> TASK_STATE_ENTRIES[] = {
    {TASK_STATE::QUEUED, "QUEUED"},     {TASK_STATE::RUNNING, "RUNNING"}, {TASK_STATE::WORKED, "WORKED"},
    {TASK_STATE::FINISHED, "FINISHED"}, {TASK_STATE::FAILED, "FAILED"},   {TASK_STATE::DROPPED, "DROPPED"},
};
constexpr ovMemory::EnumTable<TASK_STATE> enumTable(TASK_STATE) {
    return {"TASK_STATE", TASK_STATE_ENTRIES};
}

} // namespace ovTasks
