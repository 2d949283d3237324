// A window with an OpenGL context of its own.
#pragma once

#include <ovGraphics/device/GlContextInternal.h>

struct GLFWwindow;

namespace ovGraphics::device {

class GlWindow final : public GlContext {
public:
    /// Opens a window, its context current on return. @return null and the reason in error.
    static ovMemory::UniquePtr<GlWindow> open(const DeviceRequest& request, ovMemory::String& error);
    ~GlWindow() override;

    void swap();
    void pollEvents();
    bool shouldClose() const;
    void getSize(unsigned int& width, unsigned int& height) const;

protected:
    void _bind() override;
    void _unbind() override;

private:
    explicit GlWindow(GLFWwindow* window)
        : _window(window) {}
    GLFWwindow* _window;
};

} // namespace ovGraphics::device
