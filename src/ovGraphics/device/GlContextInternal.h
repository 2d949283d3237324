// OpenGL contexts, and which of them is current.
#pragma once

#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

/// A context of OpenGL 4.5 core.
class GlContext {
public:
    GlContext() = default;
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
    virtual ~GlContext() = default;

    /// Makes the context current on this thread, at the cost of one comparison when it is already.
    void makeCurrent() {
        if (_current != this)
            _switch();
    }

    /// Makes the next makeCurrent() ask the API, after foreign code may have made another context current.
    static void forgetCurrent() { _current = nullptr; }

protected:
    virtual void _bind() = 0;
    virtual void _unbind() = 0;
    /// For destructors: leaves the context if it is current.
    void _leave();

private:
    void _switch();
    static thread_local constinit GlContext* _current;
};

/// Opens a context without a window system, current on return. @return null and the reason in error.
ovMemory::UniquePtr<GlContext> openHeadlessContext(const DeviceRequest& request, ovMemory::String& error);

/// How many devices EGL lists; each can be asked for by index.
int countHeadlessDevices();

} // namespace ovGraphics::device
