// The OpenGL device.
#pragma once

#include <ovGraphics/device/Device.h>
#include <ovGraphics/device/GlCoreInternal.h>

namespace ovGraphics::device {

class GlWindow;

class GlDevice final : public Device {
public:
    /// Opens the context that the request asks for. @return null and the reason in error.
    static ovMemory::UniquePtr<GlDevice> open(const DeviceRequest& request, ovMemory::String& error);
    ~GlDevice() override;
    GlDevice(const GlDevice&) = delete;
    GlDevice& operator=(const GlDevice&) = delete;

    const DeviceInfo& getInfo() const override { return _core.info; }
    const DeviceStatistics& getStatistics() const override { return _core.statistics; }
    bool supportsFormat(FORMAT format) const override;
    bool supportsRenderTarget(FORMAT format) const override;

    ovMemory::UniquePtr<GpuTexture> createTexture(const TextureDesc& desc, ovMemory::String& error) override;
    ovMemory::UniquePtr<GpuSampler> createSampler(const SamplerDesc& desc, ovMemory::String& error) override;
    ovMemory::UniquePtr<GpuBuffer> createBuffer(unsigned int size, BUFFER_USAGE usage,
                                                ovMemory::String& error) override;
    ovMemory::UniquePtr<GpuGeometry> createGeometry(const GeometryDesc& desc,
                                                    ovMemory::String& error) override;
    ovMemory::UniquePtr<GpuTarget> createTarget(const TargetDesc& desc, ovMemory::String& error) override;
    ovMemory::UniquePtr<GpuProgram> createProgram(const shading::CompiledProgram& program,
                                                  ovMemory::BufferView<const unsigned char> binary,
                                                  unsigned int binaryFormat,
                                                  ovMemory::String& error) override;
    bool getProgramBinary(const GpuProgram& program, ovMemory::Buffer<unsigned char>& binary,
                          unsigned int& format) override;
    ovMemory::UniquePtr<GpuTimer> createTimer() override;

    void uploadTexture(GpuTexture& texture, unsigned int slice, unsigned int mip,
                       ovMemory::BufferView<const unsigned char> data, unsigned int rowPitch) override;
    bool readTexture(GpuTexture& texture, unsigned int slice, unsigned int mip,
                     ovMemory::Buffer<unsigned char>& data) override;
    void generateMips(GpuTexture& texture) override;
    void copyTexture(GpuTexture& source, unsigned int sourceSlice, unsigned int sourceMip, GpuTexture& target,
                     unsigned int targetSlice, unsigned int targetMip) override;
    void updateBuffer(GpuBuffer& buffer, unsigned int offset,
                      ovMemory::BufferView<const unsigned char> data) override;
    void copyBuffer(GpuBuffer& source, unsigned int sourceOffset, GpuBuffer& target,
                    unsigned int targetOffset, unsigned int size) override;

    void setTarget(GpuTarget& target, const Rectangle& viewport) override;
    void clearColor(unsigned int index, const std::array<float, 4>& color) override;
    void clearDepthStencil(bool clearDepth, float depth, bool clearStencil, unsigned int stencil) override;
    void setProgram(GpuProgram& program) override;
    void setBlendState(const BlendStateDesc& state) override;
    void setRasterState(const RasterStateDesc& state) override;
    void setDepthStencilState(const DepthStencilStateDesc& state) override;
    void setTextureUnit(unsigned int unit, GpuTexture* texture, GpuSampler* sampler, TEXTURE_TYPE expected,
                        bool array) override;
    void setConstantBuffer(unsigned int slot, GpuBuffer* buffer) override;
    void drawFullScreenQuad() override;
    void drawGeometry(GpuGeometry& geometry, const GeometryDraw& draw) override;

    void finish() override;
    void invalidateState() override;

    void present(GpuTexture& texture) override;
    void pollWindowEvents() override;
    bool windowShouldClose() const override;
    void getWindowSize(unsigned int& width, unsigned int& height) const override;

    ovMemory::String takeDebugErrors() override;

private:
    GlDevice() = default;
    void _readInfo();
    void _listenToDriver();

    mutable GlCore _core; ///< asking a question also needs the context current
    GlWindow* _window = nullptr;
};

} // namespace ovGraphics::device
