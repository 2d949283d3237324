#include <algorithm>
#include <ovVeldris/scripts/tasksWrap/LuaScheduler.h>

namespace ovTasksWrap {

LuaScheduler::LuaScheduler(std::size_t threadCount, ovScripts::Environment* creationEnvironment,
                           ovVeldris::LogManager* logManager) {
    while (_threads.size() < std::clamp<std::size_t>(threadCount, 1, MAX_THREADS))
        _threads.push_back(std::make_unique<LuaThread>(creationEnvironment, logManager));
}

std::size_t LuaScheduler::getPendingCount() const {
    std::size_t count = 0;
    for (const auto& thread : _threads)
        count += thread->getPendingCount();
    return count;
}

void LuaScheduler::addTask(LuaSchedulerTask& task, ovScripts::ScriptObjectReference reference) {
    const auto idlest = std::min_element(_threads.begin(), _threads.end(), [](const auto& a, const auto& b) {
        return a->getPendingCount() < b->getPendingCount();
    });
    (*idlest)->addTask(task, std::move(reference));
}

void LuaScheduler::releaseTaskRef(const LuaSchedulerTask* task) {
    for (const auto& thread : _threads)
        thread->releaseTaskRef(task);
}

bool LuaScheduler::run() {
    bool allRun = true;
    for (const auto& thread : _threads)
        allRun = thread->run() && allRun;
    return allRun;
}

} // namespace ovTasksWrap
