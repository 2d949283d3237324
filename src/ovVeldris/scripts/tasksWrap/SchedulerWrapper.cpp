#include <algorithm>
#include <ovVeldris/scripts/tasksWrap/SchedulerWrapper.h>
#include <ovVeldris/scripts/tasksWrap/TaskArguments.h>
#include <thread>

namespace ovTasksWrap {

namespace {

std::size_t threadCountOf(const ovScripts::FunctionParameter& asked) {
    if (asked.isVoid())
        return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, LuaScheduler::MAX_THREADS);
    if (asked.getValueAsInt() >= 1 && asked.getValueAsInt() <= int64_t(LuaScheduler::MAX_THREADS))
        return static_cast<std::size_t>(asked.getValueAsInt());
    throw ovCommonWrap::ArgumentError("argument 1 (threads) expected 1 to " +
                                      std::to_string(LuaScheduler::MAX_THREADS) + ", got " +
                                      std::to_string(asked.getValueAsInt()));
}

} // namespace

void SchedulerWrapper::updateEnvironment(ovScripts::Environment* environment,
                                         ovVeldris::LogManager* logManager) {
    using namespace ovCommonWrap;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<LuaScheduler>);
    type.setHelp("Several threads; each task goes to the one that has the fewest.");
    type.setConstructor([environment, logManager](Arguments arguments) -> void* {
            return new LuaScheduler(threadCountOf(arguments[0]), environment, logManager);
        })
        ->addOptionalParameter(ovScripts::FUNCTION_PARAMETER_TYPE::INT, {}, "threads")
        .setHelp("One thread a core, when no count is given.");
    destructible<LuaScheduler>(type);
    type.setStaysInEnvironment();
    runnerFunctions<LuaScheduler>(type, environment);
    method(type, "getThreadCount", &LuaScheduler::getThreadCount);
    method(type, "getPendingCount", &LuaScheduler::getPendingCount, {}, "Tasks that wait or are being done.");
}

} // namespace ovTasksWrap
