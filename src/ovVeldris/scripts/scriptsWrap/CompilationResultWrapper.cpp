#include <ovScripts/CompilationResult.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/scriptsWrap/CompilationResultWrapper.h>

namespace ovScriptsWrap {

void CompilationResultWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovScripts::CompilationResult;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<CompilationResult>);
    type.setHelp("How the compilation of a script ended.");
    constructible<CompilationResult>(type);
    field(type, "_failureMessage", &CompilationResult::_failureMessage);
    field(type, "_failureType", &CompilationResult::_failureType)->help = "Of COMPILATION_FAILURE_TYPE.";
    field(type, "_success", &CompilationResult::_success);
}

} // namespace ovScriptsWrap
