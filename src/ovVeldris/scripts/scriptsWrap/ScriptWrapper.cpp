#include <ovScripts/Script.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/scriptsWrap/ScriptWrapper.h>

namespace ovScriptsWrap {

void ScriptWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovScripts::Script;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<Script>);
    type.setHelp("A text to execute.");
    constructible<Script>(type);
    type.setBorrowable<Script>([](const Script& script) { return script.getName(); });
    method(type, "getTargetInterpreter", &Script::getTargetInterpreter, {}, "Of INTERPRETER.");
    method(type, "getName", &Script::getName);
    method(type, "getSources", &Script::getSources);
    method(
        type, "getLastCompilationResult", [](Script& self) { return &self.getLastCompilationResult(); }, {},
        "How the last load() ended.");
    method(type, "setTargetInterpreter", &Script::setTargetInterpreter, {"interpreter"}, "Of INTERPRETER.");
    method(type, "setName", &Script::setName, {"name"}, "Messages say it.");
    method(type, "setSources", &Script::setSources, {"text"});
    method(type, "load", &Script::load, {}, "Compiles the text; false when that fails.");
    method(type, "unload", &Script::unload);
    method(
        type, "call",
        [environment](const Script& self) {
            if (!environment->execute(self))
                throw ArgumentError(environment->getLastExecutionResult().error);
        },
        {}, "Executes the script; its error becomes one of the caller.");
}

} // namespace ovScriptsWrap
