// A frame that a script puts together.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovGraphics {
class Camera;
class Compositor;
class CompositorNode;
class CompositorOperationsBlock;
class RenderQueue;
class Shader;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {
class Effect;
class EffectPasses;
} // namespace ovVeldris

namespace ovVeldrisWrap {

/// Steps that are drawn in the order in which they were added, as often as draw() is called. What it draws
/// with is borrowed; a step that lost something it needs draws nothing. On the singleton graphics system.
class OV_API Frame : public ovMemory::Borrowable {
public:
    Frame();
    ~Frame();
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    /// What the following steps draw into: loaded render targets. @param depth null: nothing is tested
    void drawInto(ovGraphics::Texture& color, ovGraphics::Texture* depth);
    /// Fills the colours, and the depth with the far plane.
    /// @return false, adding nothing, before drawInto(); so do the two below
    bool clear(const ovMaths::Vector& color);
    /// Draws entities. @param blended lays them over what is there by their alpha, from back to front, and
    /// leaves the depth
    bool drawQueue(ovGraphics::RenderQueue& queue, ovGraphics::Camera& camera, bool blended);
    /// Draws a shader, as of an effect, over the whole target. @param camera of its slots; may be null
    bool drawShader(ovGraphics::Shader& shader, ovGraphics::Camera* camera);
    /// Draws a picture through effects, one after another, into a target: see ovVeldris::EffectPasses. What
    /// follows needs a drawInto() of its own.
    ovMemory::Result drawEffects(ovGraphics::Texture& picture,
                                 ovMemory::BufferView<ovVeldris::Effect* const> effects,
                                 ovGraphics::Texture& target, ovGraphics::Camera* camera);
    /// A node for the passes of a complex effect, which are drawn here. Owned by the frame.
    ovGraphics::CompositorNode* appendNode();

    /// Draws now. @return false after one log line when it cannot, and when there is nothing to draw into
    bool draw();

private:
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::Buffer<ovMemory::UniquePtr<ovVeldris::EffectPasses>> _effects;
    ovMemory::Borrowed<ovGraphics::CompositorOperationsBlock>
        _block;                                      ///< of the last drawInto(); null behind effects
    ovMemory::Borrowed<ovGraphics::Texture> _target; ///< the last one
};

} // namespace ovVeldrisWrap
