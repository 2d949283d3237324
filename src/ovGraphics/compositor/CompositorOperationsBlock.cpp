#include <ovGraphics/compositor/CompositorOperationsBlock.h>

#include <algorithm>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>

namespace ovGraphics {

namespace {

unsigned int mipSize(unsigned int size, unsigned int mip) {
    return std::max(1u, size >> mip);
}

/// Whether a texture can be drawn to. @param error gets the reason when not
bool isDrawable(const System& system, Texture& texture, unsigned int slice, unsigned int mip,
                ovMemory::String& error) {
    const ovMemory::String name = "texture '" + ovMemory::String(texture.getName()) + "'";
    const device::GpuTexture* loaded = texture.getSystem() == &system ? texture.getGpuTexture() : nullptr;
    if (texture.getSystem() != &system)
        error = name + " belongs to another graphics system; create both on the same one.";
    else if (!loaded)
        error = name + " is not loaded; load it before the frame.";
    else if (!texture.getUsableAsRenderTarget())
        error = name + " is no render target; call setUsableAsRenderTarget(true) before loading it.";
    else if (slice >= loaded->getDesc().slices || mip >= loaded->getDesc().mips)
        error = name + " has " + std::to_string(loaded->getDesc().slices) + " slices of " +
                std::to_string(loaded->getDesc().mips) + " mips, and slice " + std::to_string(slice) +
                ", mip " + std::to_string(mip) + " was asked for.";
    return error.empty();
}

} // namespace

CompositorOperationsBlock::CompositorOperationsBlock() = default;
CompositorOperationsBlock::~CompositorOperationsBlock() = default;

void CompositorOperationsBlock::setTarget(unsigned int index, Texture* texture, unsigned int slice,
                                          unsigned int mip) {
    if (index >= _targets.size())
        return;
    // Whether one was set is kept beside the pointer: a texture that was destroyed leaves a target that is
    // missing, and not a block that draws into the back buffer.
    _targets[index] = {texture, slice, mip, 0, texture != nullptr};
    _targetCount = 0;
    for (unsigned int i = 0; i < _targets.size(); ++i) {
        if (_targets[i].set)
            _targetCount = i + 1;
    }
    // Made anew at the next frame, as the texture may not be loaded yet.
    _gpuTarget.reset();
    _failureLogged = false;
}

Texture* CompositorOperationsBlock::getTarget(unsigned int index) const {
    return index < _targets.size() ? _targets[index].texture.get() : nullptr;
}

void CompositorOperationsBlock::setDepthBuffer(Texture* texture, unsigned int slice, unsigned int mip) {
    _depth = {texture, slice, mip, 0, texture != nullptr};
    _gpuTarget.reset();
    _failureLogged = false;
}

void CompositorOperationsBlock::setViewport(Viewport* viewport) {
    _viewport = viewport;
}
Viewport* CompositorOperationsBlock::getViewport() const {
    return _viewport.get();
}

template <typename Pass>
Pass* CompositorOperationsBlock::_append() {
    return static_cast<Pass*>(_passes.emplace_back(std::make_unique<Pass>()).get());
}

ClearPass* CompositorOperationsBlock::appendClearPass() {
    return _append<ClearPass>();
}
PostProcessPass* CompositorOperationsBlock::appendPostProcessPass() {
    return _append<PostProcessPass>();
}
MipGenerationPass* CompositorOperationsBlock::appendMipGenerationPass() {
    return _append<MipGenerationPass>();
}
ScenePass* CompositorOperationsBlock::appendScenePass() {
    return _append<ScenePass>();
}

CompositorPass* CompositorOperationsBlock::insertPass(unsigned int position,
                                                      ovMemory::UniquePtr<CompositorPass> pass) {
    if (!pass)
        return nullptr;
    const unsigned int place = std::min(position, getPassCount());
    return _passes.insert(_passes.begin() + place, std::move(pass))->get();
}

CompositorPass* CompositorOperationsBlock::getPass(unsigned int position) const {
    return position < _passes.size() ? _passes[position].get() : nullptr;
}

bool CompositorOperationsBlock::removePass(const CompositorPass* pass) {
    const auto entry =
        std::find_if(_passes.begin(), _passes.end(), [&](const auto& own) { return own.get() == pass; });
    if (entry == _passes.end())
        return false;
    _passes.erase(entry);
    return true;
}

bool CompositorOperationsBlock::execute(RenderContext& context) {
    if (!_prepareTarget(context))
        return false;
    System& system = *context.getSystem();
    device::Device& device = *system.getDevice();
    // Without a viewport the size is that of the targets, which may have been loaded anew with another.
    const Viewport* viewport = _viewport.get();
    const device::Rectangle area = viewport ? device::Rectangle{viewport->getX(), viewport->getY(),
                                                                viewport->getWidth(), viewport->getHeight()}
                                            : device::Rectangle{0, 0, _width, _height};
    Camera* camera = context.getCamera();
    const PassExecution execution{&system, &device, _drawsIntoBackBuffer() ? 1u : _targetCount, _depth.set,
                                  camera ? camera : system.getCameraManager()->getActiveRenderCamera()};
    for (const auto& pass : _passes) {
        device.setTarget(*_gpuTarget, area); // again, for a pass may have drawn another context
        system.getViewportManager()->setActiveViewport(_viewport.get());
        system.runPass(*pass, execution);
    }
    return true;
}

void CompositorOperationsBlock::unload() {
    _gpuTarget.reset();
    for (const auto& pass : _passes)
        pass->unload();
}

bool CompositorOperationsBlock::_prepareTarget(RenderContext& context) {
    Texture* backBuffer = _drawsIntoBackBuffer() ? context.getBackBuffer() : nullptr;
    if (_gpuTarget && _targetIsCurrent(backBuffer))
        return true;
    ovMemory::String error;
    _gpuTarget = _createTarget(*context.getSystem(), backBuffer, error);
    if (_gpuTarget) {
        _failureLogged = false;
        return true;
    }
    if (!_failureLogged) // once, not once a frame
        context.getSystem()->log("Could not draw an operations block of render context '" +
                                     ovMemory::String(context.getName()) + "': " + error,
                                 "CompositorOperationsBlock");
    _failureLogged = true;
    return false;
}

// Compared by the number of loads: the device may give a texture that was loaded again the address of the old
// one. Nothing is allocated here, as it runs every frame.
bool CompositorOperationsBlock::_targetIsCurrent(Texture* backBuffer) const {
    const auto isCurrent = [](const Target& target) {
        return !target.set || (target.texture && !target.texture->isUnloaded() &&
                               target.texture->getLoadCount() == target.loadCount);
    };
    for (unsigned int i = 0; i < _targetCount; ++i) {
        if (!isCurrent(_targets[i]))
            return false;
    }
    if (!isCurrent(_depth))
        return false;
    if (!_drawsIntoBackBuffer())
        return true;
    return backBuffer && _gpuTargetBackBuffer.get() == backBuffer && !backBuffer->isUnloaded() &&
           backBuffer->getLoadCount() == _backBufferLoadCount;
}

ovMemory::UniquePtr<device::GpuTarget>
CompositorOperationsBlock::_createTarget(System& system, Texture* backBuffer, ovMemory::String& error) {
    device::TargetDesc target;
    const auto attach = [&](Texture* texture, unsigned int slice,
                            unsigned int mip) -> device::TargetAttachment {
        if (!texture)
            error = "a target texture was destroyed; set the block's targets again.";
        if (!texture || !isDrawable(system, *texture, slice, mip, error))
            return {};
        const device::TextureDesc& desc = texture->getGpuTexture()->getDesc();
        _width = mipSize(desc.width, mip);
        _height = mipSize(desc.height, mip);
        return {texture->getGpuTexture(), slice, mip};
    };
    const auto attachTarget = [&](Target& wanted) {
        const device::TargetAttachment attachment = attach(wanted.texture.get(), wanted.slice, wanted.mip);
        wanted.loadCount = wanted.texture ? wanted.texture->getLoadCount() : 0;
        return attachment;
    };

    if (_drawsIntoBackBuffer()) {
        if (!backBuffer) {
            error = "the block has no target and the context no back buffer; set one of them.";
            return nullptr;
        }
        target.colors.push_back(attach(backBuffer, 0, 0));
        _gpuTargetBackBuffer = backBuffer;
        _backBufferLoadCount = backBuffer->getLoadCount();
    }
    if (_depth.set)
        target.depth = attachTarget(_depth);
    for (unsigned int i = 0; i < _targetCount; ++i)
        target.colors.push_back(_targets[i].set ? attachTarget(_targets[i]) : device::TargetAttachment());
    return error.empty() ? system.getDevice()->createTarget(target, error) : nullptr;
}

} // namespace ovGraphics
