#include <ovScripts/detail/SharedObject.h>
#include <ovVeldris/scripts/tasksWrap/SchedulerTaskWrapper.h>
#include <ovVeldris/scripts/tasksWrap/TaskArguments.h>

namespace ovTasksWrap {

namespace {

using namespace ovCommonWrap;
using ovScripts::Environment;
using ovScripts::FUNCTION_PARAMETER_TYPE;
using ovScripts::FunctionParameter;
using ovScripts::SharedUserData;

using Bytes = ovMemory::Buffer<unsigned char>;
using Objects = ovMemory::Buffer<SharedUserData>;

SharedUserData copyOf(const Bytes* bytes) {
    if (!bytes)
        return {};
    auto shared = std::make_unique<ovScripts::detail::SharedObject>();
    const auto copy = std::make_shared<Bytes>(*bytes);
    shared->typeName = TYPE_NAME<Bytes>;
    shared->object = copy.get();
    shared->owner = copy;
    return SharedUserData(std::move(shared));
}

FunctionParameter toParameter(const SharedUserData& object) {
    return object ? FunctionParameter(object) : FunctionParameter::VOID;
}

LuaSchedulerTask& taskAt(void* handle, const Environment* environment) {
    return taskOf(*static_cast<TaskHandle*>(handle), environment);
}

void declareWork(ovScripts::UserType& type, Environment* environment) {
    type.addMemberVariable("_workFunc", FUNCTION_PARAMETER_TYPE::FUNCTION, {}, nullptr,
                           [environment](void* handle, const FunctionParameter& function) {
                               LuaSchedulerTask& task = taskAt(handle, environment);
                               if (task.setWorkFunction(function.getScriptObjectReference()))
                                   return FunctionParameter::VOID;
                               return FunctionParameter::error(
                                   task.getCreationEnvironment()->getLastExecutionResult().error);
                           })
        ->help = "What the thread does. It is copied with all that it encloses.";
    type.addMemberVariable("_initScript", FUNCTION_PARAMETER_TYPE::USER_DATA_PTR,
                           TYPE_NAME<ovScripts::Script>, nullptr,
                           [environment](void* handle, const FunctionParameter& script) {
                               taskAt(handle, environment)
                                   .setInitScript(script.getValueAsUserData<ovScripts::Script>(),
                                                  environment->referTo(script));
                               return FunctionParameter::VOID;
                           })
        ->help = "Executed before the work; an error leaves the work out.";
}

void declareBytes(ovScripts::UserType& type, Environment* environment) {
    type.addMemberVariable(
            "_inputBinaryData", FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, TYPE_NAME<Bytes>,
            [environment](void* handle) { return toParameter(taskAt(handle, environment).inputBinaryData); },
            [environment](void* handle, const FunctionParameter& bytes) {
                taskAt(handle, environment).inputBinaryData = environment->share(bytes, false);
                return FunctionParameter::VOID;
            })
        ->help = "A buffer for the work; not copied.";
    type.addMemberVariable(
            "_outputBinaryData", FUNCTION_PARAMETER_TYPE::USER_DATA, TYPE_NAME<Bytes>,
            [environment](void* handle) { return toParameter(taskAt(handle, environment).outputBinaryData); },
            [environment](void* handle, const FunctionParameter& bytes) {
                taskAt(handle, environment).outputBinaryData = copyOf(bytes.getValueAsUserData<Bytes>());
                return FunctionParameter::VOID;
            })
        ->help = "A buffer that the work gives; copied when it is set. Nil for none.";
}

void declareObjects(ovScripts::UserType& type, Environment* environment, const ovMemory::String& what,
                    Objects LuaSchedulerTask::*objects) {
    type.addMethod("add" + what)
        ->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, {}, "object")
        .addParameter(FUNCTION_PARAMETER_TYPE::BOOL, {}, "forwardOwnership")
        .setHelp("Adds an object; with true this environment lets it go.")
        .setFunction([environment, objects](Arguments arguments) {
            LuaSchedulerTask& task = taskAt(arguments[0].getValueAsUserData<TaskHandle>(), environment);
            SharedUserData object = environment->share(arguments[1], arguments[2].getValueAsBool());
            if (!object)
                return FunctionParameter::error("argument 2 (object) cannot leave its environment, got " +
                                                ovMemory::String(arguments[1].getUserDataTypeName()));
            (task.*objects).push_back(std::move(object));
            return FunctionParameter::VOID;
        });
    type.addMethod("get" + what)
        ->addParameter(FUNCTION_PARAMETER_TYPE::INT, {}, "index")
        .setResult(FUNCTION_PARAMETER_TYPE::ANY)
        .setHelp("The object of a number; the first is 0. Past the end nil, and a line in the log.")
        .setFunction([environment, objects](Arguments arguments) {
            LuaSchedulerTask& task = taskAt(arguments[0].getValueAsUserData<TaskHandle>(), environment);
            const int64_t index = arguments[1].getValueAsInt();
            if (index >= 0 && static_cast<uint64_t>(index) < (task.*objects).size())
                return toParameter((task.*objects)[static_cast<std::size_t>(index)]);
            task.logMissing(index, (task.*objects).size());
            return FunctionParameter::VOID;
        });
}

} // namespace

void SchedulerTaskWrapper::updateEnvironment(Environment* environment, ovVeldris::LogManager* logManager) {
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<TaskHandle>);
    type.setHelp("Work for another thread: a function, what it needs and what it gives.");
    type.setConstructor([environment, logManager](Arguments) -> void* {
        return new TaskHandle(std::make_unique<LuaSchedulerTask>(environment, logManager));
    });
    destructible<TaskHandle>(type);
    type.setStaysInEnvironment();
    declareWork(type, environment);
    declareBytes(type, environment);
    declareObjects(type, environment, "InputUserData", &LuaSchedulerTask::inputUserData);
    declareObjects(type, environment, "OutputUserData", &LuaSchedulerTask::outputUserData);
    bind(*type.addMethod("getSubmittedWork"), [environment](const TaskHandle& self) {
        // While a thread has the task, too: this is the way to learn that it has not any more.
        const LuaSchedulerTask* task = self.get();
        if (!task || task->getCreationEnvironment() != environment)
            throw ArgumentError("only the script that made a task knows how far it is");
        const auto& work = task->getSubmittedWork();
        return work ? std::make_unique<ovTasks::ThreadSubmittedWork>(*work) : nullptr;
    }).setHelp("How far the task is; nil before it was handed to a thread.");
}

} // namespace ovTasksWrap
