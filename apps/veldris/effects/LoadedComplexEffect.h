// An effect of several passes over a picture of a chain.
#pragma once

#include <ovGraphics/compositor/Compositor.h>
#include <veldris/effects/EffectChain.h>

namespace veldris {

/// A complex effect, ready to be drawn, in a compositor that belongs to it.
class LoadedComplexEffect {
public:
    /// @param picture, scene outlive the effect
    /// @return null after one log line when something cannot be loaded
    static ovMemory::UniquePtr<LoadedComplexEffect> load(Session& session, const PlannedEffect& planned,
                                                         ovGraphics::Texture& picture,
                                                         const PictureScene& scene);

    /// What the effect draws into when the compositor is drawn; it goes with this object.
    ovGraphics::Texture& getOutput() const;
    const ovVeldris::ComplexEffect& getEffect() const { return *_effect; }
    /// Passes may be added behind those of the effect.
    ovGraphics::Compositor& getCompositor() const { return *_compositor; }

private:
    const ovVeldris::ComplexEffectKind* _kind = nullptr;
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovVeldris::ComplexEffect> _effect;
};

} // namespace veldris
