#include <ovScripts/Environment.h>
#include <ovVeldris/System.h>
#include <ovVeldris/scripts/DeclaredNames.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <ovVeldris/scripts/veldrisWrap/LogWrapper.h>

namespace ovVeldris {

namespace {

void declareNames(ovScripts::Environment& environment) {
    for (const DeclaredName& declared : DECLARED_NAMES) {
        if (declared.isNamespace)
            environment.setNamespace(declared.name);
        else
            environment.setUserType(declared.name);
    }
}

} // namespace

ScriptsEngine::ScriptsEngine(System* system)
    : _system(system) {}

ScriptsEngine::~ScriptsEngine() {
    shutdown();
}

bool ScriptsEngine::initialize() {
    return initialize({});
}

bool ScriptsEngine::initialize(const ovScripts::EnvironmentOptions& options) {
    _environment = ovScripts::Environment::create(options);
    _environment->setEnvironmentFor(ovScripts::INTERPRETER::LUA);
    setupScriptsEnvironment(_environment.get(), _system ? _system->getLogManager() : nullptr);
    return true;
}

void ScriptsEngine::shutdown() {
    _environment.reset();
}

void ScriptsEngine::setupScriptsEnvironment(ovScripts::Environment* environment, LogManager* logManager) {
    if (!environment || environment->getInterpreter() == ovScripts::INTERPRETER::UNKNOWN)
        return;
    declareNames(*environment);
    ovVeldrisWrap::LogWrapper::updateEnvironment(environment, logManager);
}

} // namespace ovVeldris
