#include <ovGraphics/device/GlContextInternal.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <epoxy/egl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ovGraphics::device {

thread_local constinit GlContext* GlContext::_current = nullptr;

// EGL and GLFW each remember what is current on a thread, and GLFW's context may be one of GLX. The old
// context is therefore released through its own API, so that neither remembers one that is current no more.
void GlContext::_switch() {
    if (_current)
        _current->_unbind();
    _bind();
    _current = this;
}

void GlContext::_leave() {
    if (_current != this)
        return;
    _unbind();
    _current = nullptr;
}

namespace {

struct EglDeviceEntry {
    EGLDeviceEXT device;
    bool software;
};

// A plain search for the text would also find an extension whose name merely begins with the wanted one, so
// whole words are compared.
bool listsExtension(const char* extensions, ovMemory::StringView wanted) {
    if (!extensions)
        return false;
    ovMemory::StringView rest(extensions);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(' '), rest.size());
        if (rest.substr(0, end) == wanted)
            return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

// Extensions of the client library are asked for before there is any display; those of a display come later.
bool clientHas(ovMemory::StringView extension) {
    return listsExtension(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), extension);
}

/// The devices of EGL, those that draw in hardware first.
ovMemory::Buffer<EglDeviceEntry> queryDevices() {
    // EXT_device_base is the older extension that promises the same query; some drivers list only one of
    // them.
    if (!clientHas("EGL_EXT_device_enumeration") && !clientHas("EGL_EXT_device_base"))
        return {};
    EGLint count = 0;
    if (!eglQueryDevicesEXT(0, nullptr, &count) || count <= 0)
        return {};
    ovMemory::Buffer<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
    if (!eglQueryDevicesEXT(count, devices.data(), &count))
        return {};
    ovMemory::Buffer<EglDeviceEntry> entries;
    for (int i = 0; i < count; ++i) {
        const EGLDeviceEXT device = devices[static_cast<std::size_t>(i)];
        entries.push_back({device, listsExtension(eglQueryDeviceStringEXT(device, EGL_EXTENSIONS),
                                                  "EGL_MESA_device_software")});
    }
    // EGL's own order puts no kind first. Stable, so that an index of listDevices() means the same device as
    // long as the machine stays the same.
    std::stable_partition(entries.begin(), entries.end(),
                          [](const EglDeviceEntry& e) { return !e.software; });
    return entries;
}

// A bare number helps nobody: the common causes on a server are a missing driver and a user without rights to
// the device file, so these texts name them.
const char* eglErrorText() {
    switch (eglGetError()) {
    case EGL_SUCCESS:
        return "no reason given";
    case EGL_NOT_INITIALIZED:
        return "EGL_NOT_INITIALIZED (no driver, or no right to use the device)";
    case EGL_BAD_ACCESS:
        return "EGL_BAD_ACCESS (no right to use the device)";
    case EGL_BAD_ALLOC:
        return "EGL_BAD_ALLOC (out of memory)";
    case EGL_BAD_MATCH:
        return "EGL_BAD_MATCH (the driver has no OpenGL 4.5 core)";
    case EGL_BAD_CONFIG:
        return "EGL_BAD_CONFIG";
    case EGL_BAD_ATTRIBUTE:
        return "EGL_BAD_ATTRIBUTE";
    case EGL_BAD_PARAMETER:
        return "EGL_BAD_PARAMETER";
    case EGL_BAD_DISPLAY:
        return "EGL_BAD_DISPLAY";
    default:
        return "an unknown EGL error";
    }
}

class EglContext final : public GlContext {
public:
    EglContext(EGLDisplay display, EGLContext context)
        : _display(display)
        , _context(context) {}

    ~EglContext() override {
        _leave();
        eglDestroyContext(_display, _context);
    }

    bool tryCurrent() {
        forgetCurrent();
        if (!eglMakeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, _context))
            return false;
        makeCurrent();
        return true;
    }

protected:
    void _bind() override { eglMakeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, _context); }
    void _unbind() override { eglMakeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT); }

private:
    EGLDisplay _display;
    EGLContext _context;
};

EGLConfig chooseConfig(EGLDisplay display) {
    // A config describes a window surface, which a headless context never has. Without the extension any
    // config will do, hence a surface type that does not matter.
    if (listsExtension(eglQueryString(display, EGL_EXTENSIONS), "EGL_KHR_no_config_context"))
        return EGL_NO_CONFIG_KHR;
    constexpr std::array<EGLint, 5> WANTED = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE,
                                              EGL_DONT_CARE, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display, WANTED.data(), &config, 1, &count);
    return config;
}

/// Opens a context on a display. The display stays initialised for the rest of the process: EGL gives the
/// same one to every user of a device, so ending it would pull it from under the others.
ovMemory::UniquePtr<GlContext> openOnDisplay(EGLDisplay display, bool debug, ovMemory::String& error) {
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) {
        error = fmt::format("could not be initialised: {}", eglErrorText());
        return nullptr;
    }
    // Without this extension a context needs a surface to be current, and drawing goes to textures only.
    if (!listsExtension(eglQueryString(display, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context")) {
        error = "lacks EGL_KHR_surfaceless_context";
        return nullptr;
    }
    // EGL's default is OpenGL ES; the binding counts for this thread and for the contexts made after it.
    if (!eglBindAPI(EGL_OPENGL_API)) {
        error = "has no desktop OpenGL";
        return nullptr;
    }
    // Mesa's software rasteriser refuses 4.6, and nothing here needs more than 4.5.
    const std::array<EGLint, 9> attributes = {EGL_CONTEXT_MAJOR_VERSION,
                                              4,
                                              EGL_CONTEXT_MINOR_VERSION,
                                              5,
                                              EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                              EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                              EGL_CONTEXT_OPENGL_DEBUG,
                                              debug ? EGL_TRUE : EGL_FALSE,
                                              EGL_NONE};
    const EGLContext handle =
        eglCreateContext(display, chooseConfig(display), EGL_NO_CONTEXT, attributes.data());
    if (handle == EGL_NO_CONTEXT) {
        error = fmt::format("gave no OpenGL 4.5 core context: {}", eglErrorText());
        return nullptr;
    }
    // A driver may create a context and then fail to make it current, so the device counts as open only after
    // that.
    auto context = std::make_unique<EglContext>(display, handle);
    if (!context->tryCurrent()) {
        error = fmt::format("could not make its context current: {}", eglErrorText());
        return nullptr;
    }
    return context;
}

ovMemory::UniquePtr<GlContext> openDevice(const EglDeviceEntry& entry, bool debug, ovMemory::String& error) {
    if (!clientHas("EGL_EXT_platform_device")) {
        error = "cannot be opened without EGL_EXT_platform_device";
        return nullptr;
    }
    return openOnDisplay(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, entry.device, nullptr), debug,
                         error);
}

/// Keeps Mesa on its software rasteriser while a display is initialised.
// The surfaceless platform takes the first GPU that Mesa finds and has no attribute to say otherwise. The
// variable is the only way, and it is put back at once, because children of the host's process would inherit
// it.
class SoftwareOnly {
public:
    explicit SoftwareOnly(bool wanted)
        : _wanted(wanted) {
        if (!_wanted)
            return;
        if (const char* before = std::getenv(NAME)) {
            _before = before;
            _wasSet = true;
        }
        setenv(NAME, "1", 1);
    }
    SoftwareOnly(const SoftwareOnly&) = delete;
    SoftwareOnly& operator=(const SoftwareOnly&) = delete;
    ~SoftwareOnly() {
        if (!_wanted)
            return;
        if (_wasSet)
            setenv(NAME, _before.c_str(), 1);
        else
            unsetenv(NAME);
    }

private:
    static constexpr const char* NAME = "LIBGL_ALWAYS_SOFTWARE";
    bool _wanted;
    bool _wasSet = false;
    ovMemory::String _before;
};

ovMemory::UniquePtr<GlContext> openSurfaceless(bool software, bool debug, ovMemory::String& error) {
    if (!clientHas("EGL_MESA_platform_surfaceless")) {
        error = "lacks EGL_MESA_platform_surfaceless";
        return nullptr;
    }
    const SoftwareOnly softwareOnly(software);
    return openOnDisplay(
        eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr), debug, error);
}

ovMemory::String nothingOpened(const ovMemory::Buffer<ovMemory::String>& causes) {
    return fmt::format(
        "No OpenGL 4.5 device could be opened without a display: {}. Install a driver (Debian's "
        "libegl-mesa0 and libgl1-mesa-dri bring a software one), or give this user the right to "
        "use the GPU (the groups video and render).",
        fmt::join(causes, "; "));
}

ovMemory::UniquePtr<GlContext> openByIndex(const ovMemory::Buffer<EglDeviceEntry>& devices,
                                           const DeviceRequest& request, ovMemory::String& error) {
    if (static_cast<std::size_t>(request.index) >= devices.size()) {
        error =
            fmt::format("There is no device {}: EGL lists {}, counted from 0. Choose one of those, or the "
                        "software device.",
                        request.index, devices.size());
        return nullptr;
    }
    ovMemory::String cause;
    auto context = openDevice(devices[static_cast<std::size_t>(request.index)], request.debugOutput, cause);
    if (!context)
        error = nothingOpened({fmt::format("EGL device {} {}", request.index, cause)});
    return context;
}

} // namespace

ovMemory::UniquePtr<GlContext> openHeadlessContext(const DeviceRequest& request, ovMemory::String& error) {
    // The device platform comes first because it can address each GPU. The surfaceless platform is the way
    // out where EGL lists no device or no device opens, as in containers without device files.
    const ovMemory::Buffer<EglDeviceEntry> devices = queryDevices();
    if (request.index >= 0 && !request.software)
        return openByIndex(devices, request, error);
    ovMemory::Buffer<ovMemory::String> causes;
    ovMemory::String cause;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (request.software && !devices[i].software)
            continue;
        if (auto context = openDevice(devices[i], request.debugOutput, cause))
            return context;
        causes.push_back(fmt::format("EGL device {} {}", i, cause));
    }
    if (auto context = openSurfaceless(request.software, request.debugOutput, cause))
        return context;
    causes.push_back(fmt::format("Mesa's surfaceless platform {}", cause));
    error = nothingOpened(causes);
    return nullptr;
}

int countHeadlessDevices() {
    return static_cast<int>(queryDevices().size());
}

} // namespace ovGraphics::device
