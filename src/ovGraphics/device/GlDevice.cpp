#include <ovGraphics/device/GlDeviceInternal.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovGraphics/device/GlFramebufferInternal.h>
#include <ovGraphics/device/GlTimerInternal.h>
#include <ovGraphics/device/GlWindowInternal.h>

namespace ovGraphics::device {

namespace {

// A mistake in a loop of draws is reported with every draw. The first messages tell the cause, so the rest is
// dropped.
constexpr std::size_t MAX_KEPT_ERRORS = 64;

ovMemory::String textOf(GLenum name) {
    const GLubyte* text = glGetString(name);
    return text ? reinterpret_cast<const char*>(text) : "";
}

unsigned int numberOf(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return static_cast<unsigned int>(std::max(value, 0));
}

// OpenGL has no query for this. It decides how passes are timed, so a name that is missing here costs wrong
// times and nothing else.
bool drawsOnTheCpu(ovMemory::StringView renderer) {
    constexpr std::array<ovMemory::StringView, 4> NAMES = {"llvmpipe", "softpipe", "SWR", "Software"};
    return std::any_of(NAMES.begin(), NAMES.end(), [renderer](ovMemory::StringView name) {
        return renderer.find(name) != renderer.npos;
    });
}

void APIENTRY onDriverMessage(GLenum, GLenum type, GLuint, GLenum, GLsizei length, const GLchar* message,
                              const void* core) {
    // Drivers also report performance hints and notes, which come with every frame and are no mistakes of the
    // caller.
    if (type != GL_DEBUG_TYPE_ERROR)
        return;
    const auto size = length < 0 ? ovMemory::StringView(message).size() : static_cast<std::size_t>(length);
    static_cast<GlCore*>(const_cast<void*>(core))->report(ovMemory::String(message, size));
}

GlTexture& glOf(GpuTexture& texture) {
    return static_cast<GlTexture&>(texture);
}

} // namespace

void GlCore::report(ovMemory::String error) {
    if (errors.size() < MAX_KEPT_ERRORS)
        errors.push_back(std::move(error));
}

void glDiscardErrors() {
    // A lost context flags errors for ever: stop after as many as OpenGL has flags for.
    for (int i = 0; i < 8 && glGetError() != GL_NO_ERROR; ++i)
        continue;
}

const char* glErrorName(GLenum code) {
    switch (code) {
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_INVALID_FRAMEBUFFER_OPERATION:
        return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    default:
        return "an unknown error";
    }
}

ovMemory::UniquePtr<GlDevice> GlDevice::open(const DeviceRequest& request, ovMemory::String& error) {
    error.clear();
    ovMemory::UniquePtr<GlDevice> device(new GlDevice);
    if (request.windowed) {
        auto window = GlWindow::open(request, error);
        device->_window = window.get();
        device->_core.context = std::move(window);
    } else {
        device->_core.context = openHeadlessContext(request, error);
    }
    if (!device->_core.context)
        return nullptr;
    device->_readInfo();
    if (request.debugOutput)
        device->_listenToDriver();
    device->_core.pipeline.open(request.language);
    return device;
}

GlDevice::~GlDevice() {
    if (!_core.context)
        return;
    _core.makeCurrent();
    // The callback holds the address of this object's core, and a message may still arrive while objects are
    // deleted below.
    glDebugMessageCallback(nullptr, nullptr);
    _core.pipeline.close();
}

void GlDevice::_readInfo() {
    DeviceInfo& info = _core.info;
    info.vendor = textOf(GL_VENDOR);
    info.renderer = textOf(GL_RENDERER);
    info.version = textOf(GL_VERSION);
    info.software = drawsOnTheCpu(info.renderer);
    info.headless = _window == nullptr;
    info.maxTextureSize = numberOf(GL_MAX_TEXTURE_SIZE);
    info.maxCubeSize = numberOf(GL_MAX_CUBE_MAP_TEXTURE_SIZE);
    info.maxArraySlices = numberOf(GL_MAX_ARRAY_TEXTURE_LAYERS);
    // Colour and depth are drawn with the same number of samples, so the smaller limit counts for both.
    info.maxSamples =
        std::min(numberOf(GL_MAX_COLOR_TEXTURE_SAMPLES), numberOf(GL_MAX_DEPTH_TEXTURE_SAMPLES));
    info.maxColorTargets =
        std::min({numberOf(GL_MAX_COLOR_ATTACHMENTS), numberOf(GL_MAX_DRAW_BUFFERS), MAX_COLOR_TARGETS});
    info.maxTextureUnits = numberOf(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS);
    info.maxConstantBufferSize = numberOf(GL_MAX_UNIFORM_BLOCK_SIZE);
    // Anisotropic filters became core in 4.6 only; every desktop driver has the extension under one of its
    // two names.
    if (epoxy_has_gl_extension("GL_EXT_texture_filter_anisotropic") ||
        epoxy_has_gl_extension("GL_ARB_texture_filter_anisotropic"))
        glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &info.maxAnisotropy);
}

void GlDevice::_listenToDriver() {
    glEnable(GL_DEBUG_OUTPUT);
    // Without it a driver may call back later and from a thread of its own, and errors would belong to no
    // call.
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageCallback(onDriverMessage, &_core);
}

bool GlDevice::supportsFormat(FORMAT format) const {
    _core.makeCurrent();
    return glSupportsFormat(format);
}

bool GlDevice::supportsRenderTarget(FORMAT format) const {
    _core.makeCurrent();
    return glSupportsRenderTarget(format);
}

ovMemory::UniquePtr<GpuTexture> GlDevice::createTexture(const TextureDesc& desc, ovMemory::String& error) {
    _core.makeCurrent();
    return GlTexture::create(_core, desc, error);
}

ovMemory::UniquePtr<GpuSampler> GlDevice::createSampler(const SamplerDesc& desc, ovMemory::String& error) {
    _core.makeCurrent();
    return GlSampler::create(_core, desc, error);
}

ovMemory::UniquePtr<GpuBuffer> GlDevice::createBuffer(unsigned int size, BUFFER_USAGE usage,
                                                      ovMemory::String& error) {
    _core.makeCurrent();
    return GlBuffer::create(_core, size, usage, error);
}

ovMemory::UniquePtr<GpuGeometry> GlDevice::createGeometry(const GeometryDesc& desc, ovMemory::String& error) {
    _core.makeCurrent();
    return GlGeometry::create(_core, desc, error);
}

ovMemory::UniquePtr<GpuTarget> GlDevice::createTarget(const TargetDesc& desc, ovMemory::String& error) {
    _core.makeCurrent();
    return GlTarget::create(_core, desc, error);
}

ovMemory::UniquePtr<GpuProgram> GlDevice::createProgram(const shading::CompiledProgram& program,
                                                        ovMemory::BufferView<const unsigned char> binary,
                                                        unsigned int binaryFormat, ovMemory::String& error) {
    _core.makeCurrent();
    return GlProgram::create(_core, program, binary, binaryFormat, error);
}

bool GlDevice::getProgramBinary(const GpuProgram& program, ovMemory::Buffer<unsigned char>& binary,
                                unsigned int& format) {
    _core.makeCurrent();
    return static_cast<const GlProgram&>(program).getBinary(binary, format);
}

ovMemory::UniquePtr<GpuTimer> GlDevice::createTimer() {
    _core.makeCurrent();
    return createGlTimer(_core);
}

void GlDevice::uploadTexture(GpuTexture& texture, unsigned int slice, unsigned int mip,
                             ovMemory::BufferView<const unsigned char> data, unsigned int rowPitch) {
    _core.makeCurrent();
    glOf(texture).upload(slice, mip, data, rowPitch);
}

bool GlDevice::readTexture(GpuTexture& texture, unsigned int slice, unsigned int mip,
                           ovMemory::Buffer<unsigned char>& data) {
    _core.makeCurrent();
    return glOf(texture).read(slice, mip, data);
}

void GlDevice::generateMips(GpuTexture& texture) {
    _core.makeCurrent();
    glOf(texture).generateMips();
}

void GlDevice::copyTexture(GpuTexture& source, unsigned int sourceSlice, unsigned int sourceMip,
                           GpuTexture& target, unsigned int targetSlice, unsigned int targetMip) {
    _core.makeCurrent();
    glOf(source).copyTo(sourceSlice, sourceMip, glOf(target), targetSlice, targetMip);
}

void GlDevice::updateBuffer(GpuBuffer& buffer, unsigned int offset,
                            ovMemory::BufferView<const unsigned char> data) {
    _core.makeCurrent();
    static_cast<GlBuffer&>(buffer).update(offset, data);
}

void GlDevice::copyBuffer(GpuBuffer& source, unsigned int sourceOffset, GpuBuffer& target,
                          unsigned int targetOffset, unsigned int size) {
    _core.makeCurrent();
    static_cast<GlBuffer&>(source).copyTo(sourceOffset, static_cast<GlBuffer&>(target), targetOffset, size);
}

void GlDevice::setTarget(GpuTarget& target, const Rectangle& viewport) {
    _core.makeCurrent();
    _core.pipeline.setTarget(static_cast<GlTarget&>(target), viewport);
}

void GlDevice::clearColor(unsigned int index, const std::array<float, 4>& color) {
    _core.makeCurrent();
    _core.pipeline.clearColor(index, color);
}

void GlDevice::clearDepthStencil(bool clearDepth, float depth, bool clearStencil, unsigned int stencil) {
    _core.makeCurrent();
    _core.pipeline.clearDepthStencil(clearDepth, depth, clearStencil, stencil);
}

void GlDevice::setProgram(GpuProgram& program) {
    _core.makeCurrent();
    _core.pipeline.setProgram(static_cast<GlProgram&>(program));
}

// The three states are only remembered here and sent by the next draw, so that they need no current context.
void GlDevice::setBlendState(const BlendStateDesc& state) {
    _core.pipeline.setBlendState(state);
}

void GlDevice::setRasterState(const RasterStateDesc& state) {
    _core.pipeline.setRasterState(state);
}

void GlDevice::setDepthStencilState(const DepthStencilStateDesc& state) {
    _core.pipeline.setDepthStencilState(state);
}

void GlDevice::setTextureUnit(unsigned int unit, GpuTexture* texture, GpuSampler* sampler,
                              TEXTURE_TYPE expected, bool array) {
    _core.makeCurrent();
    _core.pipeline.setTextureUnit(unit, static_cast<GlTexture*>(texture), static_cast<GlSampler*>(sampler),
                                  expected, array);
}

void GlDevice::setConstantBuffer(unsigned int slot, GpuBuffer* buffer) {
    _core.makeCurrent();
    _core.pipeline.setConstantBuffer(slot, static_cast<GlBuffer*>(buffer));
}

void GlDevice::drawFullScreenQuad() {
    _core.makeCurrent();
    _core.pipeline.drawFullScreenQuad();
}

void GlDevice::drawGeometry(GpuGeometry& geometry, const GeometryDraw& draw) {
    _core.makeCurrent();
    _core.pipeline.drawGeometry(static_cast<GlGeometry&>(geometry), draw);
}

void GlDevice::finish() {
    _core.makeCurrent();
    glFinish();
}

void GlDevice::invalidateState() {
    // The foreign code may have made another context current, so the comparison in makeCurrent() cannot be
    // trusted.
    GlContext::forgetCurrent();
    _core.makeCurrent();
    _core.pipeline.reset();
}

void GlDevice::present(GpuTexture& texture) {
    if (!_window)
        return;
    _core.makeCurrent();
    GlTexture& shown = glOf(texture);
    const GLint width = static_cast<GLint>(shown.getDesc().width);
    const GLint height = static_cast<GLint>(shown.getDesc().height);
    unsigned int windowWidth = 0;
    unsigned int windowHeight = 0;
    _window->getSize(windowWidth, windowHeight);
    // A window's framebuffer cannot be attached to anything, so the picture is copied and never drawn into
    // it.
    const GlFramebuffer source({shown.getReadName(), shown.getReadTarget(), 0, 0}, shown.getFormat());
    // The window's rows run from the bottom. It shows the bytes as they are: encoded ones must not be
    // decoded.
    glDisable(GL_FRAMEBUFFER_SRGB);
    glBlitNamedFramebuffer(source.getName(), 0, 0, 0, width, height, 0, static_cast<GLint>(windowHeight),
                           static_cast<GLint>(windowWidth), 0, GL_COLOR_BUFFER_BIT, GL_LINEAR);
    glEnable(GL_FRAMEBUFFER_SRGB);
    _window->swap();
}

void GlDevice::pollWindowEvents() {
    if (_window)
        _window->pollEvents();
}

bool GlDevice::windowShouldClose() const {
    return _window && _window->shouldClose();
}

void GlDevice::getWindowSize(unsigned int& width, unsigned int& height) const {
    width = 0;
    height = 0;
    if (_window)
        _window->getSize(width, height);
}

ovMemory::String GlDevice::takeDebugErrors() {
    ovMemory::String text;
    for (const ovMemory::String& error : _core.errors)
        text += (text.empty() ? "" : "\n") + error;
    _core.errors.clear();
    return text;
}

} // namespace ovGraphics::device
