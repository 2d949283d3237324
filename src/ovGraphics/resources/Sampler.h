// Samplers: how a texture is read between and beyond its texels.
#pragma once

#include <ovGraphics/resources/Resource.h>

namespace ovGraphics {

namespace device {
class GpuSampler;
struct SamplerDesc;
} // namespace device

/// A sampler. New: linear in all three directions, clamped, border (0, 0, 0, 0), every mip.
class OV_API Sampler : public Resource {
public:
    /// A new, unloaded sampler; a null system means the singleton.
    static ovMemory::UniquePtr<Sampler> create(System* system);
    explicit Sampler(System* system);
    ~Sampler() override;

    void setFilter(FILTER filter);
    void setAddressU(TEXTURE_ADDRESS address);
    void setAddressV(TEXTURE_ADDRESS address);
    void setAddressW(TEXTURE_ADDRESS address);
    /// What BORDER addressing reads outside the texture, linear red, green, blue, alpha.
    void setBorderColor(float red, float green, float blue, float alpha);
    /// The mips that may be read, 0 the largest: (0, 0) keeps to mip 0.
    void setLodRange(float minLod, float maxLod);
    /// Added to the level that the device computes. Default 0.
    void setLodBias(float bias);
    /// Samples of the ANISOTROPIC filters, 1 to 16; capped by the device. Default 1.
    void setMaxAnisotropy(unsigned int samples);
    /// The outcome that the COMPARISON filters return 1 for: reference `comparison` texel. Default NEVER.
    void setComparison(COMPARISON comparison);

    const device::SamplerDesc& getDesc() const { return *_desc; }
    void reset() override;

    /// The device's sampler; null when unloaded.
    device::GpuSampler* getGpuSampler() const { return _gpuSampler.get(); }

private:
    bool _load(ovMemory::String& error) override;
    void _unload() override;
    template <typename T>
    void _set(T& setting, const T& value);

    ovMemory::UniquePtr<device::SamplerDesc> _desc;
    ovMemory::UniquePtr<device::GpuSampler> _gpuSampler;
};

} // namespace ovGraphics
