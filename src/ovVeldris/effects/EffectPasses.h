// Effects over a picture, one after another.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovGraphics {
class Camera;
class CompositorNode;
class CompositorOperationsBlock;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

class Effect;
class System;

/// The passes of a list of effects, with the textures between them, which hold floats. Must live for as long
/// as its passes are drawn.
///
/// Source and target hold light, whether their formats store it as sRGB or not. Where an effect wants colours
/// encoded, as FXAA does, a pass before it encodes them, and one behind it decodes them. An effect that can
/// draw over its picture, and is set so, is drawn over a copy.
class OV_API EffectPasses {
public:
    /// @param system not owned; that of the effects
    explicit EffectPasses(System* system);
    ~EffectPasses();
    EffectPasses(const EffectPasses&) = delete;
    EffectPasses& operator=(const EffectPasses&) = delete;

    /// Gives each effect its picture, loads it, and appends its passes to a node. Once for each object.
    /// @param source, target loaded, two textures, borrowed like the effects. Of one size where an
    ///        effect that wants encoded colours comes first
    /// @param effects different ones, at least one
    /// @param camera that effects of a scene look with; may be null
    /// @return a failure with its reason, or after log lines that tell it; nothing is appended then
    ovMemory::Result append(ovGraphics::CompositorNode& node, ovGraphics::Texture& source,
                            ovMemory::BufferView<Effect* const> effects, ovGraphics::Texture& target,
                            ovGraphics::Camera* camera = nullptr);

private:
    struct Step;

    ovMemory::Result _plan(ovMemory::BufferView<Effect* const> effects);
    ovMemory::Result _makeTextures(const ovGraphics::Texture& target);
    bool _load(Step& step, ovGraphics::Texture& picture) const;
    bool _loadConversion(Step& step, ovGraphics::Texture& picture) const;
    bool _loadEffect(Step& step, ovGraphics::Texture& picture) const;
    static void _appendPasses(ovGraphics::CompositorOperationsBlock& block, const Step& step,
                              ovGraphics::Camera* camera);

    ovMemory::Borrowed<System> _system;
    ovMemory::Buffer<ovMemory::UniquePtr<Step>> _steps;
    ovMemory::UniquePtr<ovGraphics::Texture> _between[2]; ///< by turns
};

} // namespace ovVeldris
