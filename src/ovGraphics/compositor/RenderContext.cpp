#include <ovGraphics/compositor/RenderContext.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>

namespace ovGraphics {

ovMemory::UniquePtr<RenderContext> RenderContext::create(System* system) {
    return std::make_unique<RenderContext>(system);
}

RenderContext::RenderContext(System* system)
    : Resource(system, "render context") {}

RenderContext::~RenderContext() = default;

void RenderContext::setDescriptor(const RenderContextDescriptor& descriptor) {
    _window = descriptor.window;
    _texture = descriptor.texture;
    _windowBuffer.reset();
}

void RenderContext::setCompositor(Compositor* compositor) {
    _compositor = compositor;
}
Compositor* RenderContext::getCompositor() const {
    return _compositor.get();
}
void RenderContext::setCamera(Camera* camera) {
    _camera = camera;
}
Camera* RenderContext::getCamera() const {
    return _camera.get();
}

Texture* RenderContext::getBackBuffer() const {
    return _window ? _windowBuffer.get() : _texture.get();
}

bool RenderContext::followWindowSize() {
    ovMemory::String error;
    const device::Device* device = _getDevice(error);
    if (device && !getSystem()->getConfiguration().window)
        error = "the graphics system has no window; name one in Configuration::window.";
    if (!error.empty()) {
        _logFailure("draw in the window with", error);
        return false;
    }
    unsigned int width = 0;
    unsigned int height = 0;
    device->getWindowSize(width, height);
    if (width == 0 || height == 0) // minimised
        return false;
    if (!_windowBuffer) {
        _windowBuffer = Texture::create(getSystem());
        _windowBuffer->setName("window back buffer");
        _windowBuffer->setHidden(true);
        _windowBuffer->setFormat(FORMAT::R8G8B8A8_UNORM);
        _windowBuffer->setGammaCorrected(true); // screens show sRGB, passes write light
        _windowBuffer->setUsableAsRenderTarget(true);
    }
    // load() does nothing while the size stays the same.
    _windowBuffer->setWidth(width);
    _windowBuffer->setHeight(height);
    return _windowBuffer->load();
}

void RenderContext::reset() {
    Resource::reset();
    setDescriptor({});
    _compositor = nullptr;
    _camera = nullptr;
}

} // namespace ovGraphics
