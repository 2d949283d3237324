#include <ovResources/ResourceManager.h>
#include <ovTasks/LambdaTask.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <ovVeldris/scripts/tasksWrap/LuaThread.h>

namespace ovTasksWrap {

namespace {

/// What the queue owns of a task: the way to it.
class ForwardingTask : public ovTasks::Task {
public:
    explicit ForwardingTask(std::shared_ptr<TaskLink> link)
        : _link(std::move(link)) {}

    void work() override {
        const std::lock_guard lock(_link->mutex);
        if (_link->task) // the script may have let it go
            _link->task->work();
    }

private:
    std::shared_ptr<TaskLink> _link;
};

ovTasks::WorkerSettings settingsOf(ovVeldris::LogManager* logManager) {
    return {"lua thread", [logManager](ovMemory::StringView line) {
                if (logManager)
                    logManager->log(line, "LuaThread");
            }};
}

ovMemory::UniquePtr<ovScripts::Environment> newWorkerEnvironment(const ovScripts::Environment& creator) {
    ovScripts::EnvironmentOptions options = creator.getOptions();
    options.isWorker = true;
    auto environment = ovScripts::Environment::create(options);
    environment->shareInterruptions(creator);
    return environment;
}

} // namespace

LuaThread::LuaThread(ovScripts::Environment* creationEnvironment, ovVeldris::LogManager* logManager)
    : _creationEnvironment(creationEnvironment)
    , _thread(std::make_unique<ovTasks::Thread>(settingsOf(logManager)))
    , _environment(newWorkerEnvironment(*creationEnvironment)) {
    // Made here: several threads that ask for it first would make several.
    ovResources::ResourceManager::getInstance();
    _thread->addTask(std::make_unique<ovTasks::LambdaTask>([environment = _environment.get(), logManager] {
        environment->setEnvironmentFor(ovScripts::INTERPRETER::LUA);
        ovVeldris::ScriptsEngine::setupScriptsEnvironment(environment, logManager);
    }));
}

LuaThread::~LuaThread() {
    // The thread first: what it works with goes after it.
    _thread.reset();
    _taskReferences.clear();
    _environment.reset();
}

void LuaThread::addTask(LuaSchedulerTask& task, ovScripts::ScriptObjectReference reference) {
    task.prepare(_environment.get(), &_current);
    _taskReferences[&task] = std::move(reference);
    task.setSubmittedWork(_thread->addTask(std::make_unique<ForwardingTask>(task.getLink())));
}

void LuaThread::runScript(const ovScripts::Script& script) {
    // A copy: the script's owner may let it go before its turn comes.
    _thread->addTask(std::make_unique<ovTasks::LambdaTask>(
        [environment = _environment.get(), copy = std::make_shared<ovScripts::Script>(script)] {
            environment->execute(*copy);
        }));
}

} // namespace ovTasksWrap
