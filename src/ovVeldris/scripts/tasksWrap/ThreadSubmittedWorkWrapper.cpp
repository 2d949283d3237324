#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/tasksWrap/TaskTypeNames.h>
#include <ovVeldris/scripts/tasksWrap/ThreadSubmittedWorkWrapper.h>

namespace ovTasksWrap {

namespace {

// Milliseconds of a time in seconds: 0 for less than none and for what is no number, and at most a year.
std::chrono::milliseconds toMilliseconds(double seconds) {
    constexpr double LONGEST = 365.0 * 24.0 * 3600.0;
    if (!(seconds > 0.0))
        return std::chrono::milliseconds(0);
    return std::chrono::milliseconds(static_cast<int64_t>(std::min(seconds, LONGEST) * 1000.0));
}

} // namespace

void ThreadSubmittedWorkWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovTasks::ThreadSubmittedWork;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<ThreadSubmittedWork>);
    type.setHelp("How far a submitted task is. Outlives the task and its thread.");
    destructible<ThreadSubmittedWork>(type);
    method(
        type, "getState",
        [](const ThreadSubmittedWork& self) { return ovMemory::enumToText(self.getState()); }, {},
        "QUEUED, RUNNING, FINISHED, FAILED or DROPPED.");
    method(type, "isOver", &ThreadSubmittedWork::isOver, {}, "Whether the task has ended, whichever way.");
    method(type, "getFailure", &ThreadSubmittedWork::getFailure, {}, "Why the task failed; else empty.");
    method(
        type, "waitFor",
        [](const ThreadSubmittedWork& self, double seconds) { return self.waitFor(toMilliseconds(seconds)); },
        {"seconds"}, "Waits until the task has ended, so long at most; returns whether it has.");
}

} // namespace ovTasksWrap
