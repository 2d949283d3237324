#include <ovGraphics/device/GlWindowInternal.h>

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>
#include <algorithm>
#include <fmt/format.h>

namespace ovGraphics::device {

namespace {

// GLFW is used from the main thread alone, as it demands.
// Counted, because glfwTerminate() closes the windows of everybody.
int openWindows = 0;

void release() {
    if (--openWindows == 0)
        glfwTerminate();
}

ovMemory::String glfwErrorText() {
    const char* text = nullptr;
    return glfwGetError(&text) == GLFW_NO_ERROR || !text ? "no reason given" : text;
}

GLFWwindow* createWindow(const DeviceRequest& request, int contextApi) {
    // Hints stay from the last window, which may have been the host's own.
    glfwDefaultWindowHints();
    glfwWindowHint(GLFW_CONTEXT_CREATION_API, contextApi);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 4);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 5);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_OPENGL_DEBUG_CONTEXT, request.debugOutput ? GLFW_TRUE : GLFW_FALSE);
    // Nothing is drawn into the window itself: pictures are copied into it, so depth and stencil would be
    // memory for nothing.
    glfwWindowHint(GLFW_DEPTH_BITS, 0);
    glfwWindowHint(GLFW_STENCIL_BITS, 0);
    return glfwCreateWindow(static_cast<int>(request.windowWidth), static_cast<int>(request.windowHeight),
                            request.windowTitle.c_str(), nullptr, nullptr);
}

} // namespace

ovMemory::UniquePtr<GlWindow> GlWindow::open(const DeviceRequest& request, ovMemory::String& error) {
    constexpr unsigned int LARGEST_SIDE = 32767;
    const unsigned int smaller = std::min(request.windowWidth, request.windowHeight);
    if (smaller == 0 || std::max(request.windowWidth, request.windowHeight) > LARGEST_SIDE) {
        error = fmt::format("A window of {}x{} pixels cannot be opened: each side must be 1 to {}.",
                            request.windowWidth, request.windowHeight, LARGEST_SIDE);
        return nullptr;
    }
    constexpr const char* ADVICE = "Run it where a display is (DISPLAY or WAYLAND_DISPLAY is set, xvfb-run "
                                   "makes a virtual one), or draw without a window.";
    if (openWindows == 0 && !glfwInit()) {
        error = fmt::format("No window system could be reached: {}. {}", glfwErrorText(), ADVICE);
        return nullptr;
    }
    ++openWindows;
    // EGL first, as headless devices use it too: one thread may then switch between both kinds.
    GLFWwindow* window = createWindow(request, GLFW_EGL_CONTEXT_API);
    if (!window)
        window = createWindow(request, GLFW_NATIVE_CONTEXT_API);
    if (!window) {
        error = fmt::format("A window of {}x{} pixels with OpenGL 4.5 core could not be opened: {}. {}",
                            request.windowWidth, request.windowHeight, glfwErrorText(), ADVICE);
        release();
        return nullptr;
    }
    ovMemory::UniquePtr<GlWindow> result(new GlWindow(window));
    result->makeCurrent();
    // One picture a refresh: a viewer that draws faster only heats the machine.
    glfwSwapInterval(1);
    return result;
}

GlWindow::~GlWindow() {
    _leave();
    glfwDestroyWindow(_window);
    release();
}

void GlWindow::swap() {
    glfwSwapBuffers(_window);
}

void GlWindow::pollEvents() {
    glfwPollEvents();
}

bool GlWindow::shouldClose() const {
    return glfwWindowShouldClose(_window) == GLFW_TRUE;
}

void GlWindow::getSize(unsigned int& width, unsigned int& height) const {
    int x = 0;
    int y = 0;
    // The size in pixels; the window's own size is in screen units, which differ on displays of high density.
    glfwGetFramebufferSize(_window, &x, &y);
    width = static_cast<unsigned int>(std::max(x, 0));
    height = static_cast<unsigned int>(std::max(y, 0));
}

void GlWindow::_bind() {
    glfwMakeContextCurrent(_window);
}

void GlWindow::_unbind() {
    glfwMakeContextCurrent(nullptr);
}

} // namespace ovGraphics::device
