// The hub of the library.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/InstanceHolder.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/Configuration.h>

namespace ovVeldris {
class System;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovVeldris::System>;

namespace ovVeldris {

class ComplexEffectManager;
class ContentLoader;
class EffectManager;
class EnvironmentRenderer;
class GraphicsEngine;
class LogManager;
class MaterialManager;
class PbsEnvironmentMapFilter;
class ProjectLoader;
class ScriptsEngine;

/// The object through which effects, materials, loaders and tools reach the graphics system, the log and each
/// other.
///
/// Two uses. An ordinary System (public constructor) has everything to itself: managers and log manager of
/// its own, and a graphics system that the host gives or that it makes. The singleton (getInstance()) uses
/// the singletons of the managers, the log manager and ovGraphics::System, so that
/// EffectManager::getInstance() and System::getInstance()->getEffectManager() are the same object.
///
/// Belongs to the thread that drives rendering.
class OV_API System : public ovCommon::MaybeSingletonClass<System>, public ovMemory::Borrowable {
public:
    /// An ordinary system, not initialised. Cannot fail and logs nothing.
    System();
    /// shutdown(), then everything else. The singleton also kills the managers, whoever created them, and the
    /// graphics singleton.
    ~System() override;

    /// Starts the graphics engine, then the scripts engine, then makes the managers. Called again, it starts
    /// anew: managers and program trackers of an ordinary system are replaced.
    /// @return false
    ///         when the graphics system (which logs why) or the scripts engine cannot start;
    ///         what started before stays until shutdown()
    bool initialize(const Configuration& configuration);

    /// Ends the system for good: the managers with all they own, the log manager, the environment tools, the
    /// scripting environment, and last the graphics system. initialize() afterwards brings back the managers
    /// and the graphics side, but neither the log manager nor the environment tools. May be repeated.
    void shutdown();

    // These exist from construction to destruction.
    GraphicsEngine* getGraphicsEngine() const { return _graphicsEngine.get(); }
    ScriptsEngine* getScriptsEngine() const { return _scriptsEngine.get(); }
    ContentLoader* getContentLoader() const { return _contentLoader.get(); }
    ProjectLoader* getProjectLoader() const { return _projectLoader.get(); }

    // These exist from construction to shutdown(), and are null afterwards.
    PbsEnvironmentMapFilter* getPbsEnvironmentMapFilter() const { return _pbsEnvironmentMapFilter.get(); }
    EnvironmentRenderer* getEnvironmentRenderer() const { return _environmentRenderer.get(); }
    LogManager* getLogManager() const;

    // These exist from a successful initialize() to shutdown(), and are null otherwise.
    ComplexEffectManager* getComplexEffectManager() const;
    EffectManager* getEffectManager() const;
    MaterialManager* getMaterialManager() const;

private:
    friend class ovCommon::MaybeSingletonClass<System>;

    explicit System(bool useSingletons);

    ovMemory::UniquePtr<GraphicsEngine> _graphicsEngine;
    ovMemory::UniquePtr<ScriptsEngine> _scriptsEngine;
    ovMemory::UniquePtr<ContentLoader> _contentLoader;
    ovMemory::UniquePtr<ProjectLoader> _projectLoader;
    ovMemory::UniquePtr<PbsEnvironmentMapFilter> _pbsEnvironmentMapFilter;
    ovMemory::UniquePtr<EnvironmentRenderer> _environmentRenderer;
    ovMemory::InstanceHolder<ComplexEffectManager> _complexEffectManager;
    ovMemory::InstanceHolder<EffectManager> _effectManager;
    ovMemory::InstanceHolder<LogManager> _logManager;
    ovMemory::InstanceHolder<MaterialManager> _materialManager;
};

/// The system that an object is created for: the given one, or the singleton (created when missing) when it
/// is null.
OV_API System* systemOrSingleton(System* system);

} // namespace ovVeldris
