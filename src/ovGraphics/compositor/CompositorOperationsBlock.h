// Passes that draw into the same targets.
#pragma once

#include <ovGraphics/compositor/CompositorPass.h>

namespace ovGraphics {

class Camera;
class RenderContext;
class ScenePass;
class Viewport;

namespace device {
class GpuTarget;
}

/// Targets, a depth buffer, a viewport, and the passes that draw there in order. Owned by its node.
class OV_API CompositorOperationsBlock : public ovMemory::Borrowable {
public:
    CompositorOperationsBlock();
    ~CompositorOperationsBlock();

    /// Draws into one mip of one slice (or cube face) of a loaded, render-target texture. @param index of the
    /// pixel stage's output, 0 to 7; others are ignored. Without any target the block draws into the
    /// context's back buffer; with a depth buffer alone it draws depth alone.
    void setTarget(unsigned int index, Texture* texture, unsigned int slice = 0, unsigned int mip = 0);
    Texture* getTarget(unsigned int index) const;
    /// A depth texture to test against and write; null for none.
    void setDepthBuffer(Texture* texture, unsigned int slice = 0, unsigned int mip = 0);
    /// The part of the targets that is drawn to; null: all of it. Clear passes fill the whole targets anyway.
    void setViewport(Viewport* viewport);
    Viewport* getViewport() const;

    ClearPass* appendClearPass();
    PostProcessPass* appendPostProcessPass();
    MipGenerationPass* appendMipGenerationPass();
    ScenePass* appendScenePass();
    /// Puts a pass before the one at position; a position beyond the end appends. @return the pass, null for
    /// null
    CompositorPass* insertPass(unsigned int position, ovMemory::UniquePtr<CompositorPass> pass);
    unsigned int getPassCount() const { return static_cast<unsigned int>(_passes.size()); }
    /// The pass at a position, or null.
    CompositorPass* getPass(unsigned int position) const;
    /// Destroys a pass. @return false when it is not of this block
    bool removePass(const CompositorPass* pass);

    /// Draws the passes in order, on the context's system. @return false after one log line when a target is
    /// unusable; nothing is drawn then
    bool execute(RenderContext& context);

    /// Frees what drawing made on the device; the next frame makes it again.
    void unload();

private:
    struct Target {
        ovMemory::Borrowed<Texture> texture;
        unsigned int slice = 0;
        unsigned int mip = 0;
        unsigned int loadCount = 0; ///< load of the texture that _gpuTarget was made with
        bool set = false;
    };

    template <typename Pass>
    Pass* _append();
    bool _drawsIntoBackBuffer() const { return _targetCount == 0 && !_depth.set; }
    bool _prepareTarget(RenderContext& context);
    bool _targetIsCurrent(Texture* backBuffer) const;
    ovMemory::UniquePtr<device::GpuTarget> _createTarget(System& system, Texture* backBuffer,
                                                         ovMemory::String& error);

    std::array<Target, device::MAX_COLOR_TARGETS> _targets;
    unsigned int _targetCount = 0;
    Target _depth;
    ovMemory::Borrowed<Viewport> _viewport;
    ovMemory::Buffer<ovMemory::UniquePtr<CompositorPass>> _passes;
    ovMemory::UniquePtr<device::GpuTarget> _gpuTarget;
    ovMemory::Borrowed<Texture> _gpuTargetBackBuffer;
    unsigned int _backBufferLoadCount = 0;
    unsigned int _width = 0;  ///< of the targets, texels
    unsigned int _height = 0; ///< of the targets, texels
    bool _failureLogged = false;
};

} // namespace ovGraphics
