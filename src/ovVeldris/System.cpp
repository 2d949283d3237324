#include <ovVeldris/System.h>

#include <ovVeldris/complexEffects/ComplexEffectManager.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/content/ProjectLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/scripts/ScriptsEngine.h>

template class ovCommon::MaybeSingletonClass<ovVeldris::System>;

namespace ovVeldris {

System::System()
    : System(false) {}

System::System(bool useSingletons)
    : _graphicsEngine(std::make_unique<GraphicsEngine>(useSingletons))
    , _scriptsEngine(std::make_unique<ScriptsEngine>(this))
    , _contentLoader(std::make_unique<ContentLoader>(this))
    , _projectLoader(std::make_unique<ProjectLoader>(this))
    , _pbsEnvironmentMapFilter(std::make_unique<PbsEnvironmentMapFilter>(this))
    , _environmentRenderer(std::make_unique<EnvironmentRenderer>(this)) {
    if (useSingletons)
        _logManager.useInstance();
    else
        _logManager.own(new LogManager());
}

System::~System() {
    if (isTheSingletonInstance()) {
        // Also managers that getInstance() made outside initialize(): they are bound to this system.
        ComplexEffectManager::kill();
        EffectManager::kill();
        MaterialManager::kill();
    }
    shutdown();
    // In the reverse order of their construction; each may use those made before it.
    _projectLoader.reset();
    _contentLoader.reset();
    _scriptsEngine.reset();
    _graphicsEngine.reset();
}

bool System::initialize(const Configuration& configuration) {
    // Managers come last: they are only there when what they make can be loaded.
    if (!_graphicsEngine->initialize(configuration) || !_scriptsEngine->initialize())
        return false;
    if (isTheSingletonInstance()) {
        _complexEffectManager.useInstance();
        _effectManager.useInstance();
        _materialManager.useInstance();
    } else {
        _complexEffectManager.own(new ComplexEffectManager(this));
        _effectManager.own(new EffectManager(this));
        _materialManager.own(new MaterialManager(this));
    }
    return true;
}

void System::shutdown() {
    // The managers first: effects and materials release programs and shaders while the graphics system runs.
    _complexEffectManager.destroy();
    _effectManager.destroy();
    _materialManager.destroy();
    _logManager.destroy();
    _pbsEnvironmentMapFilter.reset();
    _environmentRenderer.reset();
    _scriptsEngine->shutdown();
    _graphicsEngine->shutdown();
}

LogManager* System::getLogManager() const {
    return _logManager.get();
}
ComplexEffectManager* System::getComplexEffectManager() const {
    return _complexEffectManager.get();
}
EffectManager* System::getEffectManager() const {
    return _effectManager.get();
}
MaterialManager* System::getMaterialManager() const {
    return _materialManager.get();
}

System* systemOrSingleton(System* system) {
    return system ? system : System::getInstance();
}

} // namespace ovVeldris
