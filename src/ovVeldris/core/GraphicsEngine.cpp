#include <ovVeldris/core/GraphicsEngine.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/ProgramTrackersHolder.h>

namespace ovVeldris {

GraphicsEngine::GraphicsEngine(bool useSingletons)
    : _useSingletons(useSingletons) {}

GraphicsEngine::~GraphicsEngine() {
    shutdown();
    if (_useSingletons)
        ovGraphics::System::kill();
}

bool GraphicsEngine::initialize(const Configuration& configuration) {
    _programTrackers.reset(); // while the system that their programs are on still exists
    _takeGraphicsSystem(configuration.graphicsSystem);
    ovGraphics::System* const graphicsSystem = getGraphicsSystem();
    if (!graphicsSystem->getIsInitialized() &&
        !graphicsSystem->initialize(configuration.graphicsConfiguration))
        return false;
    _prepareDefaultSampler(*graphicsSystem->getSamplerManager());
    _programTrackers = std::make_unique<ProgramTrackersHolder>(graphicsSystem);
    _trackedSystem = graphicsSystem;
    return true;
}

void GraphicsEngine::shutdown() {
    _programTrackers.reset();
    if (ovGraphics::System* const graphicsSystem = getGraphicsSystem())
        graphicsSystem->shutdown();
    // An owned system stays held, because resources that outlive the shutdown still refer to it.
    _graphicsSystem.forgetUnlessOwned();
}

// Anyone may kill the graphics singleton, and the next look-up makes another, which knows none of the
// programs.
ProgramTrackersHolder* GraphicsEngine::getProgramTrackersHolder() const {
    return _trackedSystem && _trackedSystem.get() == getGraphicsSystem() ? _programTrackers.get() : nullptr;
}

void GraphicsEngine::_prepareDefaultSampler(ovGraphics::SamplerManager& samplers) {
    ovGraphics::Sampler* sampler = samplers.get(DEFAULT_SAMPLER_NAME);
    if (!sampler) {
        sampler = samplers.createOrRetrieve(DEFAULT_SAMPLER_NAME);
        sampler->setHidden(true);
        sampler->setFilter(ovGraphics::FILTER::MIN_MAG_MIP_LINEAR);
        sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::WRAP);
        sampler->setAddressV(ovGraphics::TEXTURE_ADDRESS::WRAP);
    }
    // Also one that the host made under that name: materials need it loaded, and its settings stay.
    sampler->load();
}

void GraphicsEngine::_takeGraphicsSystem(ovGraphics::System* hostSystem) {
    if (_useSingletons)
        _graphicsSystem.useInstance();
    else if (hostSystem)
        _graphicsSystem.borrow(hostSystem);
    else
        _graphicsSystem.own(new ovGraphics::System());
}

ovGraphics::System* graphicsSystemOf(const System* system) {
    const GraphicsEngine* const engine = system ? system->getGraphicsEngine() : nullptr;
    return engine ? engine->getGraphicsSystem() : nullptr;
}

ProgramTrackersHolder* programTrackersOf(const System* system) {
    const GraphicsEngine* const engine = system ? system->getGraphicsEngine() : nullptr;
    return engine ? engine->getProgramTrackersHolder() : nullptr;
}

} // namespace ovVeldris
