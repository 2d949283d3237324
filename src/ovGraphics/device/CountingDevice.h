// A device that counts what it is asked for and draws nothing.
#pragma once

#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

/// What a counting device was asked for since it was made.
struct DeviceCounts {
    uint64_t draws = 0;     ///< those that were in order: full-screen quads and geometries
    uint64_t instances = 0; ///< of the geometries drawn
    uint64_t setCalls = 0;  ///< calls that set a target, a program, a state, a unit or constants
    uint64_t clears = 0;    ///< of a colour target or of depth and stencil
    uint64_t objects = 0;   ///< created
    uint64_t textureUploads = 0;
    uint64_t bufferCopies = 0;
    uint64_t bufferUploads = 0;
    uint64_t uploadedBytes = 0; ///< of the uploads to buffers
    /// Uploads to buffers that a draw of the same frame or of the one before reads. On hardware such an
    /// upload waits for the frame before, or makes the driver copy.
    uint64_t uploadsToBuffersInUse = 0;
};

/// A device without an API behind it, to see what a frame asks for and what the library itself costs. It
/// takes every format and program, keeps the bytes of buffers, and forgets texels: readTexture() gives none.
/// Calls that a device must refuse are refused and reported by takeDebugErrors().
///
///     auto device = std::make_unique<ovGraphics::device::CountingDevice>();
///     const ovGraphics::device::CountingDevice& counter = *device;
///     system.initialize(configuration, std::move(device));
class OV_API CountingDevice final : public Device {
public:
    CountingDevice();
    ~CountingDevice() override;

    const DeviceCounts& getCounts() const { return _counts; }
    /// Tells that a frame ends here; only uploadsToBuffersInUse asks for it.
    void nextFrame() { ++_frame; }
    /// What was written to a buffer of a counting device; zeros where nothing was.
    static ovMemory::BufferView<const unsigned char> getBytes(const GpuBuffer& buffer);

    const DeviceInfo& getInfo() const override { return _info; }
    const DeviceStatistics& getStatistics() const override { return _statistics; }
    bool supportsFormat(FORMAT) const override { return true; }
    bool supportsRenderTarget(FORMAT) const override { return true; }

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
    void generateMips(GpuTexture&) override {}
    void copyTexture(GpuTexture&, unsigned int, unsigned int, GpuTexture&, unsigned int,
                     unsigned int) override {}
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

    void finish() override {}
    void invalidateState() override;

    void present(GpuTexture&) override {}
    void pollWindowEvents() override {}
    bool windowShouldClose() const override { return false; }
    void getWindowSize(unsigned int& width, unsigned int& height) const override;

    ovMemory::String takeDebugErrors() override;

private:
    static constexpr unsigned int MAX_UNITS = 96;
    static constexpr unsigned int MAX_SLOTS = 36;

    struct Unit {
        GpuTexture* texture = nullptr;
        GpuSampler* sampler = nullptr;
        bool operator==(const Unit&) const = default;
    };
    /// What is set, as a device that filters calls keeps it.
    struct State {
        GpuTarget* target = nullptr;
        Rectangle viewport;
        GpuProgram* program = nullptr;
        BlendStateDesc blend;
        RasterStateDesc raster;
        DepthStencilStateDesc depth;
        std::array<Unit, MAX_UNITS> units;
        std::array<GpuBuffer*, MAX_SLOTS> slots{};
    };

    template <typename T>
    void _set(T& sent, const T& wanted);
    bool _canDraw();
    void _report(ovMemory::StringView error);

    DeviceInfo _info;
    DeviceStatistics _statistics;
    DeviceCounts _counts;
    State _state;
    uint64_t _frame = 2; ///< so that new buffers, read in frame 0, are not in use
    ovMemory::String _errors;
};

} // namespace ovGraphics::device
