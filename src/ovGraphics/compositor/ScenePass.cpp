#include <ovGraphics/compositor/ScenePass.h>

#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/ShaderPassMemorySlot.h>
#include <ovGraphics/scene/RenderQueue.h>

namespace ovGraphics {

ScenePass::ScenePass()
    : CompositorPass("scene") {}

ScenePass::~ScenePass() = default;

void ScenePass::setRenderQueue(RenderQueue* queue) {
    _queue = queue;
}
RenderQueue* ScenePass::getRenderQueue() const {
    return _queue.get();
}
void ScenePass::setCamera(Camera* camera) {
    _camera = camera;
}
Camera* ScenePass::getCamera() const {
    return _camera.get();
}

bool ScenePass::execute(const PassExecution& execution) {
    if (!_queue || _queue->getSystem() != execution.system)
        return false;
    const PassEnvironment environment{execution.system, _camera ? _camera.get() : execution.activeCamera};
    // Without clipping, as in shadow maps, what lies before the near plane is drawn as well and must not be
    // culled.
    _settings.depthClip = _rasterState.getDesc().depthClip;
    ovMemory::String error;
    if (!_drawList.update(*execution.system, *_queue, environment.camera, _settings, error))
        return false;
    execution.device->setBlendState(_blendState.getDesc());
    execution.device->setDepthStencilState(_depthStencilState.getDesc());
    return _draw(execution, environment);
}

bool ScenePass::_draw(const PassExecution& execution, const PassEnvironment& environment) {
    const Shader* bound = nullptr;
    bool isBound = false;
    const DrawList::Batch* previous = nullptr;
    bool complete = true;
    for (const DrawList::Batch& batch : _drawList.getBatches()) {
        // Sorted by state, batches of one shader stand together: comparing with the last one saves most
        // bindings.
        if (batch.shader != bound) {
            bound = batch.shader;
            isBound = batch.shader->bind(environment);
        }
        if (!isBound || !batch.geometry) {
            // The rest is drawn: one shader that failed to load shall not blank the picture.
            complete = false;
            continue;
        }
        if (!previous || previous->doubleSided != batch.doubleSided || previous->mirrored != batch.mirrored)
            _setRasterState(execution, batch);
        previous = &batch;
        execution.device->drawGeometry(*batch.geometry, batch.draw);
    }
    return complete;
}

void ScenePass::_setRasterState(const PassExecution& execution, const DrawList::Batch& batch) const {
    device::RasterStateDesc state = _rasterState.getDesc();
    if (batch.doubleSided)
        state.cull = CULL_MODE::NONE;
    // A mirrored node turns the winding of its triangles round.
    state.frontCounterClockwise = state.frontCounterClockwise != batch.mirrored;
    execution.device->setRasterState(state);
}

ovMemory::StringView ScenePass::getRequirement() const {
    return "it needs a render queue of this graphics system, and its entities loaded shaders and meshes.";
}

void ScenePass::unload() {
    _drawList.unload();
}

} // namespace ovGraphics
