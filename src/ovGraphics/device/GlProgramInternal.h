// Linked programs.
#pragma once

#include <epoxy/gl.h>
#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

struct GlCore;

class GlProgram final : public GpuProgram {
public:
    static ovMemory::UniquePtr<GlProgram> create(GlCore& core, const shading::CompiledProgram& texts,
                                                 ovMemory::BufferView<const unsigned char> binary,
                                                 unsigned int binaryFormat, ovMemory::String& error);
    ~GlProgram() override;
    GlProgram(const GlProgram&) = delete;
    GlProgram& operator=(const GlProgram&) = delete;

    GLuint getName() const { return _name; }
    bool getBinary(ovMemory::Buffer<unsigned char>& binary, unsigned int& format) const;

private:
    explicit GlProgram(GlCore& core);
    bool _load(ovMemory::BufferView<const unsigned char> binary, unsigned int format);
    bool _link(const shading::CompiledProgram& texts, ovMemory::String& error);

    GlCore& _core;
    GLuint _name = 0;
};

} // namespace ovGraphics::device
