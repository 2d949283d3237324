#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/tasksWrap/LuaSchedulerTask.h>
#include <ovVeldris/scripts/tasksWrap/TaskTypeNames.h>

namespace ovTasksWrap {

namespace {

using ovScripts::EXECUTION_FAILURE_TYPE;
using ovScripts::FunctionParameter;

constexpr ovMemory::StringView SCRIPTS_SENDER = "ovVeldris::lua";

/// Lets the scripts of a thread see the task that it does, for as long as it does.
class CurrentTask {
public:
    CurrentTask(ovScripts::Environment& environment, TaskHandle& handle, LuaSchedulerTask* task)
        : _space(environment.getNamespace("ovTasks"))
        , _handle(handle) {
        _handle.show(task);
        _set(&_handle);
    }
    CurrentTask(const CurrentTask&) = delete;
    CurrentTask& operator=(const CurrentTask&) = delete;
    ~CurrentTask() {
        _set(nullptr);
        _handle.show(nullptr);
    }

private:
    void _set(TaskHandle* handle) {
        _space->setUserDataMember("CURRENT_TASK", ovCommonWrap::TYPE_NAME<TaskHandle>, handle);
    }

    ovScripts::Namespace* _space;
    TaskHandle& _handle;
};

} // namespace

LuaSchedulerTask::LuaSchedulerTask(ovScripts::Environment* creationEnvironment,
                                   ovVeldris::LogManager* logManager)
    : _creationEnvironment(creationEnvironment)
    , _resultSlot(1, FunctionParameter(-1))
    , _logManager(logManager)
    , _link(std::make_shared<TaskLink>()) {
    _link->task = this;
}

LuaSchedulerTask::~LuaSchedulerTask() {
    const std::lock_guard lock(_link->mutex);
    _link->task = nullptr;
}

bool LuaSchedulerTask::setWorkFunction(const ovScripts::ScriptObjectReference& function) {
    _workFunc = _creationEnvironment->serializeScriptObject(function, false);
    return !_workFunc.empty();
}

void LuaSchedulerTask::setInitScript(ovScripts::Script* script, ovScripts::ScriptObjectReference reference) {
    _initScript = script;
    _initScriptRef = std::move(reference);
}

void LuaSchedulerTask::logMissing(int64_t index, std::size_t count) {
    _log("A task has no object " + std::to_string(index) + ": it has " + std::to_string(count) +
             ", the first is 0. Add it before the task is handed to a thread.",
         "LuaSchedulerTask");
}

void LuaSchedulerTask::prepare(ovScripts::Environment* executionEnvironment, TaskHandle* current) {
    _executionEnvironment = executionEnvironment;
    _current = current;
    _initScriptCopy.reset();
    if (_initScript)
        _initScriptCopy.emplace(*_initScript); // the script's owner may let it go before its turn comes
}

void LuaSchedulerTask::work() {
    if (!_runInitScript())
        return;
    const ovScripts::ScriptObjectReference function =
        _executionEnvironment->deserializeScriptObject(_workFunc);
    if (function.getInterpreterReference() == 0)
        return;
    const CurrentTask current(*_executionEnvironment, *_current, this);
    _callWorkFunction(function);
}

bool LuaSchedulerTask::_runInitScript() {
    if (!_initScriptCopy || _executionEnvironment->execute(*_initScriptCopy))
        return true;
    _log("Task could not execute provided initialization script '" + _initScriptCopy->getName() +
             "'. Error reported : " + _executionEnvironment->getLastExecutionResult().error,
         "LuaSchedulerTask");
    return false;
}

void LuaSchedulerTask::_callWorkFunction(const ovScripts::ScriptObjectReference& function) {
    _resultSlot[0] = FunctionParameter(-1);
    if (!_executionEnvironment->callScriptFunction(function, {}, _resultSlot))
        _logFailure(_executionEnvironment->getLastExecutionResult());
    // Objects belong to the thread that ends here, and the task to another one.
    if (_resultSlot[0].getType() == ovScripts::FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT ||
        _resultSlot[0].getType() == ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA)
        _resultSlot[0] = FunctionParameter::VOID;
}

void LuaSchedulerTask::_logFailure(const ovScripts::ExecutionResult& result) {
    switch (result.failureType) {
    case EXECUTION_FAILURE_TYPE::BYTECODE_NOT_READY:
        _log("Bytecode is not ready from script, execution failure.", SCRIPTS_SENDER);
        break;
    case EXECUTION_FAILURE_TYPE::RUNTIME:
        _log("Runtime error during script execution :", SCRIPTS_SENDER);
        break;
    case EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION:
        _log("Memory allocation failure, script execution failed :", SCRIPTS_SENDER);
        break;
    default:
        _log("Unknown error during execution :", SCRIPTS_SENDER);
    }
    _log(result.error, SCRIPTS_SENDER);
}

void LuaSchedulerTask::_log(ovMemory::StringView message, ovMemory::StringView sender) {
    if (_logManager)
        _logManager->log(message, sender);
}

} // namespace ovTasksWrap
