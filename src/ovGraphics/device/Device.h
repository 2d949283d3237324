// The small set of operations that the graphics library asks of a graphics API. Only this folder knows the
// API.
#pragma once

#include <array>
#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/device/PipelineState.h>
#include <ovGraphics/formats/Enums.h>
#include <ovGraphics/formats/Format.h>
#include <ovGraphics/shading/CompiledProgram.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::device {

/// What a device is and how much it can do.
struct DeviceInfo {
    ovMemory::String vendor;
    ovMemory::String renderer;
    ovMemory::String version;
    bool software = false;           ///< draws on the CPU: timer queries say little there
    bool headless = false;           ///< no window system behind it
    unsigned int maxTextureSize = 0; ///< texels a side of a 2D texture
    unsigned int maxCubeSize = 0;    ///< texels a side of a cube face
    unsigned int maxArraySlices = 0;
    unsigned int maxSamples = 0;
    unsigned int maxColorTargets = 0;
    unsigned int maxTextureUnits = 0;       ///< of both stages together
    unsigned int maxConstantBufferSize = 0; ///< bytes
    float maxAnisotropy = 1.0f;
};

struct TextureDesc {
    TEXTURE_TYPE type = TEXTURE_TYPE::TEXTURE_2D;
    FORMAT format = FORMAT::R8G8B8A8_UNORM;
    bool gammaCorrected = false; ///< decode sRGB when sampled, encode when drawn to
    unsigned int width = 1;      ///< texels
    unsigned int height = 1;     ///< texels
    unsigned int slices = 1;     ///< array slices, 6 for a cube
    unsigned int mips = 1;
    unsigned int samples = 1; ///< above 1: multisampled, drawn to and resolved, never uploaded
    bool operator==(const TextureDesc&) const = default;
};

struct SamplerDesc {
    FILTER filter = FILTER::MIN_MAG_MIP_LINEAR;
    TEXTURE_ADDRESS addressU = TEXTURE_ADDRESS::CLAMP;
    TEXTURE_ADDRESS addressV = TEXTURE_ADDRESS::CLAMP;
    TEXTURE_ADDRESS addressW = TEXTURE_ADDRESS::CLAMP;
    std::array<float, 4> borderColor = {0.0f, 0.0f, 0.0f, 0.0f};
    float minLod = 0.0f;
    float maxLod = 3.402823466e+38f;
    float lodBias = 0.0f;
    unsigned int maxAnisotropy = 1;
    COMPARISON comparison = COMPARISON::NEVER; ///< used by the COMPARISON filters only
};

/// Objects that live on the device; destroying one frees it there. All of them must be gone before their
/// device.
class OV_API GpuTexture {
public:
    virtual ~GpuTexture();
    const TextureDesc& getDesc() const { return _desc; }

protected:
    explicit GpuTexture(const TextureDesc& desc)
        : _desc(desc) {}

private:
    TextureDesc _desc;
};

class OV_API GpuSampler {
public:
    virtual ~GpuSampler();
};

class OV_API GpuBuffer {
public:
    virtual ~GpuBuffer();
    unsigned int getSize() const { return _size; }

protected:
    explicit GpuBuffer(unsigned int size)
        : _size(size) {}

private:
    unsigned int _size;
};

class OV_API GpuProgram {
public:
    virtual ~GpuProgram();
};

/// Vertices as one kind of vertex stage reads them: buffers and the places of the attributes in them.
class OV_API GpuGeometry {
public:
    virtual ~GpuGeometry();
};

/// A set of colour targets and a depth buffer to draw into.
class OV_API GpuTarget {
public:
    virtual ~GpuTarget();
};

/// A pending measurement of the time that the device spent between two points.
class OV_API GpuTimer {
public:
    virtual ~GpuTimer();
    virtual void begin() = 0;
    virtual void end() = 0;
    /// Milliseconds between begin() and end(); waits for the device when it is not there yet.
    virtual double getMilliseconds() = 0;
};

/// What a buffer of the device is bound as.
enum class BUFFER_USAGE : unsigned int { CONSTANTS, VERTICES, INDICES };

inline constexpr ovMemory::EnumEntry<BUFFER_USAGE> BUFFER_USAGE_ENTRIES[] = {
    {BUFFER_USAGE::CONSTANTS, "CONSTANTS"},
    {BUFFER_USAGE::VERTICES, "VERTICES"},
    {BUFFER_USAGE::INDICES, "INDICES"},
};
constexpr ovMemory::EnumTable<BUFFER_USAGE> enumTable(BUFFER_USAGE) {
    return {"BUFFER_USAGE", BUFFER_USAGE_ENTRIES};
}

/// Where an attribute of a vertex stage lies in a vertex or in the data of an instance.
struct GeometryAttribute {
    unsigned int location = 0;
    FORMAT format = FORMAT::R32G32B32A32_FLOAT; ///< one of VertexComposition::isVertexFormat
    unsigned int offset = 0;                    ///< bytes
};

/// Buffers must outlive the geometry. Attributes that it lacks read (0, 0, 0, 1).
struct GeometryDesc {
    GpuBuffer* vertices = nullptr;
    unsigned int stride = 0; ///< bytes of a vertex
    ovMemory::Buffer<GeometryAttribute> attributes;
    GpuBuffer* indices = nullptr; ///< null: vertices are drawn in their order
    bool shortIndices = false;    ///< of 16 bits instead of 32; the highest value cuts strips
    ovMemory::Buffer<GeometryAttribute> instanceAttributes; ///< read once an instance
};

/// One draw of a geometry.
struct GeometryDraw {
    PRIMITIVE_TOPOLOGY topology =
        PRIMITIVE_TOPOLOGY::TRIANGLELIST; ///< points, lines, triangles, their strips
    unsigned int count = 0;               ///< indices, or vertices without indices
    GpuBuffer* instances = nullptr;       ///< data of the instances; may be null without instance attributes
    unsigned int instanceStride = 0;      ///< bytes
    unsigned int firstInstance = 0;       ///< place of the first instance's data, in strides
    unsigned int instanceCount = 1;
};

struct TargetAttachment {
    GpuTexture* texture = nullptr;
    unsigned int slice = 0;
    unsigned int mip = 0;
};

struct TargetDesc {
    ovMemory::Buffer<TargetAttachment> colors; ///< in the order of the pixel stage's outputs
    TargetAttachment depth;                    ///< no depth buffer when its texture is null
};

/// A rectangle of a target in texels; (0, 0) is the top left.
struct Rectangle {
    int x = 0;
    int y = 0;
    unsigned int width = 0;
    unsigned int height = 0;
    bool operator==(const Rectangle&) const = default;
};

/// Counters of the calls that reached the API, to see that state filtering works.
struct DeviceStatistics {
    uint64_t drawCalls = 0;
    uint64_t stateChanges = 0; ///< API calls that changed a state, draws, clears and uploads not counted
    uint64_t bufferUploads = 0;
    uint64_t programsCompiled = 0; ///< programs that the driver compiled from text
    uint64_t programsFromBinary = 0;
};

/// What a device is asked for.
struct DeviceRequest {
    SHADER_LANGUAGE language = SHADER_LANGUAGE::GLSL; ///< decides the clip rules
    bool software = false;    ///< take the software rasteriser even when there is a GPU
    int index = -1;           ///< which of the EGL devices; -1: hardware first, then software
    bool debugOutput = false; ///< ask the driver to report errors
    bool windowed = false;    ///< a window with its own context instead of a headless one
    unsigned int windowWidth = 1280;
    unsigned int windowHeight = 720;
    ovMemory::String windowTitle;
};

/// A graphics device. Textures hold their top row first, and every rectangle counts from the top left, in
/// both languages. Not thread-safe; every call happens on the thread that created it. Calls of several
/// devices may be mixed: each makes itself current.
class OV_API Device {
public:
    virtual ~Device();

    virtual const DeviceInfo& getInfo() const = 0;
    virtual const DeviceStatistics& getStatistics() const = 0;

    /// Whether textures of this format can be made, and sampled with linear filters, or drawn to.
    virtual bool supportsFormat(FORMAT format) const = 0;
    virtual bool supportsRenderTarget(FORMAT format) const = 0;

    // Each create operation returns null and the reason in error when the device refuses.
    virtual ovMemory::UniquePtr<GpuTexture> createTexture(const TextureDesc&, ovMemory::String& error) = 0;
    virtual ovMemory::UniquePtr<GpuSampler> createSampler(const SamplerDesc&, ovMemory::String& error) = 0;
    virtual ovMemory::UniquePtr<GpuBuffer> createBuffer(unsigned int size, BUFFER_USAGE,
                                                        ovMemory::String& error) = 0;
    virtual ovMemory::UniquePtr<GpuGeometry> createGeometry(const GeometryDesc&, ovMemory::String& error) = 0;
    virtual ovMemory::UniquePtr<GpuTarget> createTarget(const TargetDesc&, ovMemory::String& error) = 0;
    /// Compiles and links the texts, or loads the driver's binary when one is given and still accepted.
    virtual ovMemory::UniquePtr<GpuProgram> createProgram(const shading::CompiledProgram&,
                                                          ovMemory::BufferView<const unsigned char> binary,
                                                          unsigned int binaryFormat,
                                                          ovMemory::String& error) = 0;
    /// The driver's binary of a program. @return false when the driver offers none.
    virtual bool getProgramBinary(const GpuProgram&, ovMemory::Buffer<unsigned char>& binary,
                                  unsigned int& format) = 0;
    virtual ovMemory::UniquePtr<GpuTimer> createTimer() = 0;

    /// Writes one mip of one slice. rowPitch is the bytes from one row (of blocks, for compressed formats) of
    /// data to the next; 0 means tight.
    virtual void uploadTexture(GpuTexture&, unsigned int slice, unsigned int mip,
                               ovMemory::BufferView<const unsigned char> data, unsigned int rowPitch) = 0;
    /// Reads one mip of one slice back in the texture's own format, rows tight. @return false when the device
    /// cannot read the format.
    virtual bool readTexture(GpuTexture&, unsigned int slice, unsigned int mip,
                             ovMemory::Buffer<unsigned char>& data) = 0;
    /// Fills every mip below the first of every slice from the first.
    virtual void generateMips(GpuTexture&) = 0;
    /// Copies one mip of one slice to another texture of the same size and format.
    virtual void copyTexture(GpuTexture& source, unsigned int sourceSlice, unsigned int sourceMip,
                             GpuTexture& target, unsigned int targetSlice, unsigned int targetMip) = 0;
    virtual void updateBuffer(GpuBuffer&, unsigned int offset,
                              ovMemory::BufferView<const unsigned char> data) = 0;
    /// Copies bytes between two buffers on the device, after the draws asked for before and ahead of those
    /// asked for afterwards, so that nobody waits. Offsets and size in bytes.
    virtual void copyBuffer(GpuBuffer& source, unsigned int sourceOffset, GpuBuffer& target,
                            unsigned int targetOffset, unsigned int size) = 0;

    // Drawing. State that is set again unchanged costs no API call.
    virtual void setTarget(GpuTarget&, const Rectangle& viewport) = 0;
    virtual void clearColor(unsigned int index, const std::array<float, 4>& color) = 0;
    virtual void clearDepthStencil(bool clearDepth, float depth, bool clearStencil, unsigned int stencil) = 0;
    virtual void setProgram(GpuProgram&) = 0;
    virtual void setBlendState(const BlendStateDesc&) = 0;
    virtual void setRasterState(const RasterStateDesc&) = 0;
    virtual void setDepthStencilState(const DepthStencilStateDesc&) = 0;
    /// A null texture reads as opaque black; a null sampler reads single texels (point, clamp).
    virtual void setTextureUnit(unsigned int unit, GpuTexture*, GpuSampler*, TEXTURE_TYPE expected,
                                bool array) = 0;
    virtual void setConstantBuffer(unsigned int slot, GpuBuffer*) = 0;
    /// Draws the full-screen quad: a strip of four vertices with POSITION (float4) and TEXCOORD (float2), in
    /// the order of texture coordinates (0, 0), (1, 0), (0, 1), (1, 1), placed as the language's clip rules
    /// want.
    virtual void drawFullScreenQuad() = 0;
    virtual void drawGeometry(GpuGeometry&, const GeometryDraw&) = 0;

    /// Waits until everything asked for so far is done.
    virtual void finish() = 0;
    /// Forgets what is bound, after foreign code has changed the API's state.
    virtual void invalidateState() = 0;

    // The window, when the device was made with one; otherwise these do nothing and answer false or 0.
    /// Shows mip 0 of a texture in the window, scaled to its size.
    virtual void present(GpuTexture&) = 0;
    virtual void pollWindowEvents() = 0;
    virtual bool windowShouldClose() const = 0;
    virtual void getWindowSize(unsigned int& width, unsigned int& height) const = 0;

    /// Error messages that the driver has reported since the last call, joined by line ends; needs
    /// debugOutput.
    virtual ovMemory::String takeDebugErrors() = 0;
};

/// Opens a device. @return null and the reason in error when none can be opened, with what to do about it.
OV_API ovMemory::UniquePtr<Device> createDevice(const DeviceRequest&, ovMemory::String& error);

/// The devices that a headless program can choose from by index, one line of text each.
OV_API ovMemory::Buffer<ovMemory::String> listDevices();

} // namespace ovGraphics::device
