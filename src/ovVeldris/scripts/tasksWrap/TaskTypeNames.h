// What scripts call threads and their tasks.
#pragma once

#include <ovTasks/ThreadSubmittedWork.h>
#include <ovVeldris/scripts/commonWrap/TypeNames.h>
#include <ovVeldris/scripts/tasksWrap/LuaScheduler.h>
#include <ovVeldris/scripts/tasksWrap/LuaThread.h>

namespace ovCommonWrap {

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovTasksWrap::LuaScheduler> = "ovTasks.Scheduler";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovTasksWrap::TaskHandle> = "ovTasks.Task";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovTasksWrap::LuaThread> = "ovTasks.Thread";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovTasks::ThreadSubmittedWork> = "ovTasks.ThreadSubmittedWork";

} // namespace ovCommonWrap
