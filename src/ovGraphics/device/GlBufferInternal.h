// Buffers on the device.
#pragma once

#include <epoxy/gl.h>
#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

struct GlCore;

class GlBuffer final : public GpuBuffer {
public:
    static ovMemory::UniquePtr<GlBuffer> create(GlCore& core, unsigned int size, BUFFER_USAGE usage,
                                                ovMemory::String& error);
    ~GlBuffer() override;
    GlBuffer(const GlBuffer&) = delete;
    GlBuffer& operator=(const GlBuffer&) = delete;

    GLuint getName() const { return _name; }
    /// Another number for every buffer that a device makes; OpenGL's names come again.
    uint64_t getSerial() const { return _serial; }
    void update(unsigned int offset, ovMemory::BufferView<const unsigned char> data);
    void copyTo(unsigned int offset, GlBuffer& target, unsigned int targetOffset, unsigned int size);

private:
    GlBuffer(GlCore& core, unsigned int size);

    GlCore& _core;
    uint64_t _serial;
    GLuint _name = 0;
};

} // namespace ovGraphics::device
