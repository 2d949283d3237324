#include <ovGraphics/System.h>

#include <chrono>
#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resourceSets/ResourceManager.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/ConstantPool.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
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
    , _renderContexts(std::make_unique<RenderContextManager>(this))
    , _meshes(std::make_unique<MeshManager>(this))
    , _nodes(std::make_unique<NodeManager>(this))
    , _renderQueues(std::make_unique<RenderQueueManager>(this))
    , _resourceManager(std::make_unique<ResourceManager>(this)) {}

System::~System() {
    shutdown();
    // Dependent things first. Any order would be safe, as all of them borrow, but this one leaves nothing to
    // tell the borrowers.
    _renderQueues.reset();
    _nodes.reset();
    _meshes.reset();
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
    ovMemory::String error;
    auto device = device::createDevice(requestFor(configuration), error);
    return _start(configuration, std::move(device), error);
}

bool System::initialize(const Configuration& configuration, ovMemory::UniquePtr<device::Device> device) {
    return _device || _start(configuration, std::move(device), "none was given.");
}

bool System::_start(const Configuration& configuration, ovMemory::UniquePtr<device::Device> device,
                    ovMemory::StringView error) {
    // Before the device is looked at, because a failure is told to the configuration's logger.
    _configuration = configuration;
    if (!device) {
        log(ovMemory::String("Could not open a graphics device: ").append(error), "System");
        return false;
    }
    _device = std::move(device);
    _programLibrary = std::make_unique<ProgramLibrary>(*_device, configuration.cacheFolder);
    _constantPool = std::make_unique<ConstantPool>(*_device, _frameNumber);
    _startSeconds = nowInSeconds();
    _lastFrameSeconds = 0.0;
    if (!_timeIsFixed)
        _frameTime = {};
    return true;
}

void System::shutdown() {
    if (!_device)
        return;
    // The device's objects must be gone before the device, also those of resources that the host owns.
    for (Resource* resource : _resources)
        resource->unload();
    if (_configuration.debugOutput)
        _reportDebugErrors();
    _passTimings.clear();
    _passTimer.reset();
    _constantPool.reset();
    _programLibrary.reset();
    _device.reset();
}

bool System::frame(RenderContext* context) {
    if (!_canDraw(context) || (context->drawsInWindow() && !context->followWindowSize()))
        return false;
    ++_frameNumber;
    if (!_timeIsFixed)
        _advanceTime();
    // A frame that a measured pass draws belongs to that pass, and must not clear the list.
    if (!_passIsMeasured)
        _passTimings.clear();
    _renderContexts->setActiveRenderContext(context);

    // Passes may run the application's code, which may erase what is drawn here.
    const ovMemory::Borrowed<RenderContext> running = context;
    const ovMemory::Borrowed<Compositor> compositor = context->getCompositor();
    for (unsigned int i = 0; running && compositor && i < compositor->getNodeCount(); ++i) {
        // The node is looked up again for every block: a pass may have removed it.
        for (unsigned int j = 0; running && compositor; ++j) {
            const CompositorNode* node = compositor->getNode(i);
            if (!node || !node->getActive() || j >= node->getOperationsBlockCount())
                break;
            node->getOperationsBlock(j)->execute(*context);
        }
    }
    if (running && context->drawsInWindow())
        _device->present(*context->getBackBuffer()->getGpuTexture());
    if (_configuration.debugOutput)
        _reportDebugErrors();
    return true;
}

// Checked for each frame and not when things are put together, because systems may be shut down and things
// erased in between.
bool System::_canDraw(const RenderContext* context) const {
    ovMemory::StringView reason;
    if (!_device)
        reason = "the graphics system is not initialised; call System::initialize first.";
    else if (!context)
        reason = "no render context was given.";
    else if (context->getSystem() != this)
        reason = "it belongs to another graphics system; call frame of that one.";
    else if (!context->getCompositor())
        reason = "it has no compositor; call RenderContext::setCompositor first.";
    else if (context->getCompositor()->getSystem() != this)
        reason = "its compositor belongs to another graphics system; create both on the same one.";
    else
        return true;
    ovMemory::String line = "Could not draw a frame";
    if (context)
        line.append(" of render context '").append(context->getName()).append("'");
    log(line.append(": ").append(reason), "System");
    return false;
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
    // Times of passes inside passes would be counted twice.
    if (!_passTimingEnabled || _passIsMeasured) {
        _executePass(pass, execution);
        return;
    }
    if (!_passTimer)
        _passTimer = _device->createTimer();
    _passIsMeasured = true;
    _passTimer->begin();
    _executePass(pass, execution);
    _passTimer->end();
    _passIsMeasured = false;
    _passTimings.push_back({ovMemory::String(pass.getName()), _passTimer->getMilliseconds()});
}

void System::_executePass(CompositorPass& pass, const PassExecution& execution) {
    const bool drawn = pass.execute(execution);
    if (!drawn && !pass._failureLogged) { // once, not once a frame
        ovMemory::String line = "The pass '";
        line.append(pass.getName()).append("' draws nothing: ").append(pass.getRequirement());
        log(line, "CompositorPass");
    }
    pass._failureLogged = !drawn;
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
    resource->_id = ++_resourcesMade;
    resource->_registryIndex = _resources.size();
    _resources.push_back(resource);
}

void System::_unregisterResource(Resource* resource) {
    // The order does not matter, so the last one takes the free place: erasing one of many resources must not
    // take longer than erasing one of few.
    Resource* last = _resources.back();
    _resources[resource->_registryIndex] = last;
    last->_registryIndex = resource->_registryIndex;
    _resources.pop_back();
}

void System::_advanceTime() {
    const double seconds = nowInSeconds() - _startSeconds;
    _frameTime = {seconds, seconds - _lastFrameSeconds};
    _lastFrameSeconds = seconds;
}

void System::_reportDebugErrors() {
    const ovMemory::String errors = _device->takeDebugErrors();
    if (!errors.empty())
        log("The driver reports: " + errors, "System");
}

} // namespace ovGraphics
