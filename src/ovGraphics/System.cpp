#include <ovGraphics/System.h>

#include <chrono>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Managers.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovGraphics/scene/Camera.h>
#include <ovLog/Logger.h>

template class ovCommon::MaybeSingletonClass<ovGraphics::System>;

namespace ovGraphics {

namespace {

double nowInSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

device::DeviceRequest requestFor(const Configuration& configuration) {
    device::DeviceRequest request;
    request.language = configuration.language;
    request.software = configuration.software;
    request.index = configuration.device;
    request.debugOutput = configuration.debugOutput;
    if (configuration.window) {
        request.windowed = true;
        request.windowWidth = configuration.window->width;
        request.windowHeight = configuration.window->height;
        request.windowTitle = configuration.window->title;
    }
    return request;
}

} // namespace

System::System()
    : System(false) {}

System::System(bool)
    : _textures(std::make_unique<TextureManager>(this))
    , _samplers(std::make_unique<SamplerManager>(this))
    , _programs(std::make_unique<ProgramManager>(this))
    , _shaders(std::make_unique<ShaderManager>(this))
    , _cameras(std::make_unique<CameraManager>(this))
    , _viewports(std::make_unique<ViewportManager>(this))
    , _compositors(std::make_unique<CompositorManager>(this))
    , _renderContexts(std::make_unique<RenderContextManager>(this)) {}

System::~System() {
    shutdown();
    _renderContexts.reset();
    _compositors.reset();
    _viewports.reset();
    _cameras.reset();
    _shaders.reset();
    _programs.reset();
    _samplers.reset();
    _textures.reset();
    for (Resource* resource : _resources) // those that the host owns and has not destroyed yet
        resource->_system = nullptr;
}

bool System::initialize(const Configuration& configuration) {
    if (_device)
        return true;
    _configuration = configuration;
    ovMemory::String error;
    _device = device::createDevice(requestFor(configuration), error);
    if (!_device) {
        log("Could not open a graphics device: " + error, "System");
        return false;
    }
    _programLibrary = std::make_unique<ProgramLibrary>(*_device, configuration.cacheFolder);
    _startSeconds = nowInSeconds();
    _frameTime = {};
    return true;
}

void System::shutdown() {
    if (!_device)
        return;
    for (Resource* resource : _resources)
        resource->unload();
    _passTimings.clear();
    _passTimer.reset();
    _programLibrary.reset();
    _device.reset();
}

bool System::frame(RenderContext* context) {
    if (!_device || !context || !context->getCompositor())
        return false;
    if (context->drawsInWindow() && !context->followWindowSize())
        return false;
    if (!_timeIsFixed)
        _advanceTime();
    _passTimings.clear();
    _renderContexts->setActiveRenderContext(context);

    const Compositor& compositor = *context->getCompositor();
    for (unsigned int i = 0; i < compositor.getNodeCount(); ++i) {
        const CompositorNode& node = *compositor.getNode(i);
        for (unsigned int j = 0; node.getActive() && j < node.getOperationsBlockCount(); ++j)
            node.getOperationsBlock(j)->execute(*context);
    }
    if (context->drawsInWindow())
        _device->present(*context->getBackBuffer()->getGpuTexture());
    if (_configuration.debugOutput)
        _reportDebugErrors();
    return true;
}

const device::DeviceInfo* System::getDeviceInfo() const {
    return _device ? &_device->getInfo() : nullptr;
}

ovMemory::Buffer<ovMemory::String> System::listDevices() {
    return device::listDevices();
}

void System::setFixedTime(double seconds, double deltaSeconds) {
    _timeIsFixed = true;
    _frameTime = {seconds, deltaSeconds};
}

void System::clearFixedTime() {
    _timeIsFixed = false;
}

ovMemory::StringView System::getPassTimingMethod() const {
    return _device && _device->getInfo().software ? "wall clock" : "timer queries";
}

void System::runPass(CompositorPass& pass, const PassExecution& execution) {
    if (!_passTimingEnabled) {
        pass.execute(execution);
        return;
    }
    if (!_passTimer)
        _passTimer = _device->createTimer();
    _passTimer->begin();
    pass.execute(execution);
    _passTimer->end();
    _passTimings.push_back({ovMemory::String(pass.getName()), _passTimer->getMilliseconds()});
}

void System::log(ovMemory::StringView message, ovMemory::StringView sender) const {
    if (_configuration.logger)
        _configuration.logger->log(message, sender);
}

void System::pollWindowEvents() {
    if (_device)
        _device->pollWindowEvents();
}

bool System::windowShouldClose() const {
    return _device && _device->windowShouldClose();
}

void System::_registerResource(Resource* resource) {
    resource->_registryIndex = _resources.size();
    _resources.push_back(resource);
}

void System::_unregisterResource(Resource* resource) {
    Resource* last = _resources.back();
    _resources[resource->_registryIndex] = last;
    last->_registryIndex = resource->_registryIndex;
    _resources.pop_back();
}

void System::_advanceTime() {
    const double seconds = nowInSeconds() - _startSeconds;
    _frameTime = {seconds, seconds - _frameTime.seconds};
}

void System::_reportDebugErrors() {
    const ovMemory::String errors = _device->takeDebugErrors();
    if (!errors.empty())
        log("The driver reports: " + errors, "System");
}

} // namespace ovGraphics
