#include <ovScripts/Environment.h>
#include <ovVeldris/scripts/scriptsWrap/InterpreterWrapper.h>

namespace ovScriptsWrap {

void InterpreterWrapper::updateEnvironment(ovScripts::Environment* environment) {
    environment->getNamespace("ovScripts.INTERPRETER")->addEnumeration<ovScripts::INTERPRETER>();
}

} // namespace ovScriptsWrap
