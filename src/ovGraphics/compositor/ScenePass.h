// The pass that draws a scene.
#pragma once

#include <ovGraphics/compositor/CompositorPass.h>
#include <ovGraphics/scene/DrawList.h>

namespace ovGraphics {

class RenderQueue;
struct PassEnvironment;

/// Draws the entities of a render queue as a camera sees them. New: no queue, no camera of its own, variant 0
/// of the shaders, entities out of sight left out, no blending, back faces culled, depth tested and written.
///
/// Front faces are clockwise on the target; those of entities whose node mirrors run the other way and are
/// drawn so.
class OV_API ScenePass : public CompositorPass {
public:
    ScenePass();
    ~ScenePass() override;

    /// Borrowed; a pass without one of the same system draws nothing.
    void setRenderQueue(RenderQueue* queue);
    RenderQueue* getRenderQueue() const;
    /// Null: the context's rendering camera.
    void setCamera(Camera* camera);
    Camera* getCamera() const;

    /// Which of the entities' shaders draws; entities without it are left out.
    void setShaderVariant(unsigned int variant) { _settings.variant = variant; }
    unsigned int getShaderVariant() const { return _settings.variant; }
    void setOrder(SCENE_ORDER order) { _settings.order = order; }
    SCENE_ORDER getOrder() const { return _settings.order; }
    /// Leaves out what lies outside the camera's view. Without depth clipping (RasterState) the near and the
    /// far plane leave nothing out. Default true.
    void setFrustumCullingEnabled(bool enabled) { _settings.culling = enabled; }
    bool getFrustumCullingEnabled() const { return _settings.culling; }

    // States to be changed in place.
    BlendState& getBlendState() { return _blendState; }
    RasterState& getRasterState() { return _rasterState; }
    DepthStencilState& getDepthStencilState() { return _depthStencilState; }

    bool execute(const PassExecution& execution) override;
    ovMemory::StringView getRequirement() const override;
    void unload() override;

private:
    bool _draw(const PassExecution& execution, const PassEnvironment& environment);
    void _setRasterState(const PassExecution& execution, const DrawList::Batch& batch) const;

    ovMemory::Borrowed<RenderQueue> _queue;
    ovMemory::Borrowed<Camera> _camera;
    DrawListSettings _settings;
    DrawList _drawList;
    BlendState _blendState;
    RasterState _rasterState;
    DepthStencilState _depthStencilState;
};

} // namespace ovGraphics
