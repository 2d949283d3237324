// Sampler objects.
#pragma once

#include <epoxy/gl.h>
#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

struct GlCore;

class GlSampler final : public GpuSampler {
public:
    static ovMemory::UniquePtr<GlSampler> create(GlCore& core, const SamplerDesc& desc,
                                                 ovMemory::String& error);
    ~GlSampler() override;
    GlSampler(const GlSampler&) = delete;
    GlSampler& operator=(const GlSampler&) = delete;

    GLuint getName() const { return _name; }
    bool compares() const { return _compares; }

private:
    explicit GlSampler(GlCore& core)
        : _core(core) {}
    void _apply(const SamplerDesc& desc);

    GlCore& _core;
    GLuint _name = 0;
    bool _compares = false;
};

} // namespace ovGraphics::device
