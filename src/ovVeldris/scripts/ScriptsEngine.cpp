#include <ovVeldris/scripts/ScriptsEngine.h>

namespace ovVeldris {

ScriptsEngine::ScriptsEngine(System* system)
    : _system(system) {}

ScriptsEngine::~ScriptsEngine() {
    shutdown();
}

bool ScriptsEngine::initialize() {
    _isInitialized = true;
    return true;
}

void ScriptsEngine::shutdown() {
    _isInitialized = false;
}

} // namespace ovVeldris
