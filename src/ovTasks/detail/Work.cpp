#include <ovTasks/detail/Work.h>

#include <cstdio>
#include <exception>
#include <utility>

namespace ovTasks::detail {

namespace {

void printLine(ovMemory::StringView line) {
    std::fprintf(stderr, "[ovTasks] %.*s\n", static_cast<int>(line.size()), line.data());
}

} // namespace

void report(const WorkerSettings& settings, const ovMemory::String& line) {
    try {
        settings.onFailure ? settings.onFailure(line) : printLine(line);
    } catch (...) {
        printLine(line); // the receiver failed: the line is told all the same
    }
}

void callGuarded(const WorkerSettings& settings, Work& work, ovMemory::StringView part,
                 const std::function<void()>& function) {
    ovMemory::String reason;
    try {
        function();
        return;
    } catch (const std::exception& exception) {
        reason = exception.what();
    } catch (...) {
        reason = "something that is no std::exception";
    }
    work.failure = "The " + ovMemory::String(part) + " of task " + std::to_string(work.number) + " of '" +
                   settings.name + "' ended by an exception: " + reason +
                   ". The task counts as failed and those behind it run; catch the exception in the task.";
    report(settings, work.failure);
}

void destroyAs(TASK_STATE end, Work work) {
    // The task goes first: who learns that it is over may rely on its being gone.
    work.task.reset();
    work.record->become(end, std::move(work.failure));
}

} // namespace ovTasks::detail
