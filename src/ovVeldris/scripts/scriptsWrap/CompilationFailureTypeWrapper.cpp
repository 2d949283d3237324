#include <ovScripts/Environment.h>
#include <ovVeldris/scripts/scriptsWrap/CompilationFailureTypeWrapper.h>

namespace ovScriptsWrap {

void CompilationFailureTypeWrapper::updateEnvironment(ovScripts::Environment* environment) {
    environment->getNamespace("ovScripts.COMPILATION_FAILURE_TYPE")
        ->addEnumeration<ovScripts::COMPILATION_FAILURE_TYPE>();
}

} // namespace ovScriptsWrap
