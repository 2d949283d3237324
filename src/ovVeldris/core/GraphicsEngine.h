// The graphics side of a system.
#pragma once

#include <ovGraphics/System.h>
#include <ovMemory/InstanceHolder.h>
#include <ovVeldris/Configuration.h>

namespace ovVeldris {

class ProgramTrackersHolder;

/// Holds the graphics system of a System and the programs that effects and materials share on it.
class OV_API GraphicsEngine {
public:
    /// The sampler that materials read their textures with: linear between texels and mips, repeating.
    static constexpr ovMemory::StringView DEFAULT_SAMPLER_NAME = "ORVANE_DEFAULT_SAMPLER";

    /// An engine without a graphics system.
    /// @param useSingletons whether the graphics system is the singleton of its class
    explicit GraphicsEngine(bool useSingletons);
    GraphicsEngine(const GraphicsEngine&) = delete;
    GraphicsEngine& operator=(const GraphicsEngine&) = delete;
    /// shutdown(); deletes a graphics system that the engine made, and kills the singleton if it uses that.
    ~GraphicsEngine();

    /// Takes the graphics system (the singleton; or the host's; or a new one), initialises it if it is not
    /// yet, and creates the program trackers and the default sampler (a sampler that the host made under that
    /// name stays as it is). A system that an earlier call made is deleted when another takes its place.
    /// @return false when the graphics system cannot be initialised; it stays held and there are no trackers
    bool initialize(const Configuration& configuration);

    /// Deletes the program trackers, then shuts the graphics system down. One that the engine made stays
    /// held.
    void shutdown();

    /// Null before initialize(), and after shutdown() unless the engine made it.
    ovGraphics::System* getGraphicsSystem() const { return _graphicsSystem.get(); }
    /// Null before initialize() and after shutdown(), and when the graphics system that they were made for is
    /// gone or was replaced by another instance.
    ProgramTrackersHolder* getProgramTrackersHolder() const;

private:
    static void _prepareDefaultSampler(ovGraphics::SamplerManager& samplers);
    void _takeGraphicsSystem(ovGraphics::System* hostSystem);

    bool _useSingletons;
    ovMemory::InstanceHolder<ovGraphics::System> _graphicsSystem;
    ovMemory::UniquePtr<ProgramTrackersHolder> _programTrackers; // before the system that its programs are on
    ovMemory::Borrowed<ovGraphics::System> _trackedSystem;       // that the trackers were made for
};

class System;

// How the library reaches the device: whoever holds a System asks here, and gets null for one that is gone.
/// The graphics system of a system; null when there is no system, or none of graphics (any more).
OV_API ovGraphics::System* graphicsSystemOf(const System* system);
/// The program trackers of a system; null when there is no system, or no trackers (any more).
OV_API ProgramTrackersHolder* programTrackersOf(const System* system);

} // namespace ovVeldris
