#include <ovScripts/Environment.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/veldrisWrap/LogWrapper.h>

namespace ovVeldrisWrap {

namespace {

using ovScripts::FunctionParameter;
using ovVeldris::LogManager;

constexpr ovMemory::StringView SCRIPTS_SENDER = "ovVeldris::lua";

// Kept to the tab: hosts compare it. Only the first value is logged.
constexpr ovMemory::StringView PRINT_SOURCES =
    "\n\tfunction print (a)\n\t\tovLogLine(tostring(a))\n\tend\n\t";

using LineReceiver = std::function<void(ovMemory::StringView)>;

// The log manager may go before the environment of the thread that renders. Other threads must not look at
// that: to them it is promised that it stays.
LineReceiver receiverOf(const ovScripts::Environment& environment, LogManager* logManager) {
    if (environment.getOptions().isWorker)
        return [logManager](ovMemory::StringView line) {
            if (logManager)
                logManager->log(line, SCRIPTS_SENDER);
        };
    return [log = ovMemory::Borrowed<LogManager>(logManager)](ovMemory::StringView line) {
        if (log)
            log->log(line, SCRIPTS_SENDER);
    };
}

void declareLogLine(ovScripts::Environment& environment, LineReceiver receiver) {
    ovScripts::Function* function = environment.setFunc("ovLogLine");
    function->addParameter(ovScripts::FUNCTION_PARAMETER_TYPE::STRING, {}, "line");
    function->setHelp("Writes a line to the log.");
    function->setFunction(
        [receiver = std::move(receiver)](ovMemory::BufferView<FunctionParameter> arguments) {
            receiver(arguments[0].getValueAsString());
            return FunctionParameter::VOID;
        });
}

void replacePrint(ovScripts::Environment& environment, LogManager* logManager) {
    ovScripts::Script script;
    script.setName("print");
    script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
    script.setSources(PRINT_SOURCES);
    script.load();
    if (!environment.execute(script) && logManager)
        logManager->log("Error while executing 'print' overwrite script. See :" +
                            environment.getLastExecutionResult().error,
                        "LogWrapper");
}

} // namespace

void LogWrapper::updateEnvironment(ovScripts::Environment* environment, LogManager* logManager) {
    const LineReceiver receiver = receiverOf(*environment, logManager);
    declareLogLine(*environment, receiver);
    environment->setWarningReceiver(receiver);
    replacePrint(*environment, logManager);
}

} // namespace ovVeldrisWrap
