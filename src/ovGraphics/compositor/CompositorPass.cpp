#include <ovGraphics/compositor/CompositorPass.h>

#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>

namespace ovGraphics {

CompositorPass::~CompositorPass() = default;

ClearPass::ClearPass()
    : CompositorPass("clear") {}

void ClearPass::setColor(unsigned int index, float red, float green, float blue, float alpha) {
    if (index < _colors.size())
        _colors[index] = {red, green, blue, alpha};
}

bool ClearPass::execute(const PassExecution& execution) {
    if (_clearColor) {
        for (unsigned int index = 0; index < execution.colorTargetCount; ++index)
            execution.device->clearColor(index, _colors[index]);
    }
    if (execution.hasDepth)
        execution.device->clearDepthStencil(_clearDepth, _depth, _clearStencil, _stencil);
    return true;
}

PostProcessPass::PostProcessPass()
    : CompositorPass("post-process") {
    // The quad covers the target, and its depth is of no use to anybody.
    _rasterState.setCullMode(CULL_MODE::NONE);
    _depthStencilState.setDepthTestEnabled(false);
    _depthStencilState.setDepthWriteEnabled(false);
}

void PostProcessPass::setShader(Shader* shader) {
    _shader = shader;
}
Shader* PostProcessPass::getShader() const {
    return _shader.get();
}
void PostProcessPass::setCamera(Camera* camera) {
    _camera = camera;
}
Camera* PostProcessPass::getCamera() const {
    return _camera.get();
}

bool PostProcessPass::execute(const PassExecution& execution) {
    Shader* shader = _shader.get();
    const PassEnvironment environment{execution.system, _camera ? _camera.get() : execution.activeCamera};
    // A shader of another system has objects of another device, which mean nothing here.
    if (!shader || shader->getSystem() != execution.system || !shader->bind(environment))
        return false;
    execution.device->setBlendState(_blendState.getDesc());
    execution.device->setRasterState(_rasterState.getDesc());
    execution.device->setDepthStencilState(_depthStencilState.getDesc());
    execution.device->drawFullScreenQuad();
    return true;
}

ovMemory::StringView PostProcessPass::getRequirement() const {
    return "it needs a loaded shader with a loaded program of this graphics system.";
}

MipGenerationPass::MipGenerationPass()
    : CompositorPass("mip generation") {}

void MipGenerationPass::setTexture(Texture* texture) {
    _texture = texture;
}

bool MipGenerationPass::execute(const PassExecution&) {
    if (!_texture || _texture->isUnloaded())
        return false;
    _texture->generateMips();
    return true;
}

ovMemory::StringView MipGenerationPass::getRequirement() const {
    return "it needs a loaded texture.";
}

} // namespace ovGraphics
