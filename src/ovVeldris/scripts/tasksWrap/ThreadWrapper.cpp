#include <ovVeldris/scripts/tasksWrap/TaskArguments.h>
#include <ovVeldris/scripts/tasksWrap/ThreadWrapper.h>

namespace ovTasksWrap {

void ThreadWrapper::updateEnvironment(ovScripts::Environment* environment,
                                      ovVeldris::LogManager* logManager) {
    using namespace ovCommonWrap;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<LuaThread>);
    type.setHelp("A thread with an environment of its own, which does tasks one after another.");
    type.setConstructor(
        [environment, logManager](Arguments) -> void* { return new LuaThread(environment, logManager); });
    destructible<LuaThread>(type);
    type.setStaysInEnvironment();
    runnerFunctions<LuaThread>(type, environment);
    method(
        type, "runScript",
        [](LuaThread& self, const ovScripts::Script* script) {
            if (script)
                self.runScript(*script);
        },
        {"script"}, "Executes a script in the thread's environment, when its turn comes.");
}

} // namespace ovTasksWrap
