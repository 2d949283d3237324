#include <ovGraphics/device/CountingDevice.h>

#include <chrono>
#include <cstring>
#include <utility>

namespace ovGraphics::device {

namespace {

struct CountingTexture final : GpuTexture {
    explicit CountingTexture(const TextureDesc& desc)
        : GpuTexture(desc) {}
};

struct CountingSampler final : GpuSampler {};

// The bytes are kept: a test can then check what was uploaded, and not only that something was.
struct CountingBuffer final : GpuBuffer {
    explicit CountingBuffer(unsigned int size)
        : GpuBuffer(size)
        , bytes(size) {}
    ovMemory::Buffer<unsigned char> bytes;
    uint64_t lastRead = 0; ///< the frame of the last draw that read it
};

struct CountingGeometry final : GpuGeometry {
    CountingBuffer* vertices = nullptr;
    CountingBuffer* indices = nullptr;
    bool readsInstances = false;
};

struct CountingTarget final : GpuTarget {};
struct CountingProgram final : GpuProgram {};

struct CountingTimer final : GpuTimer {
    using Clock = std::chrono::steady_clock;
    void begin() override { start = Clock::now(); }
    void end() override { stop = Clock::now(); }
    double getMilliseconds() override {
        return std::chrono::duration<double, std::milli>(stop - start).count();
    }
    Clock::time_point start;
    Clock::time_point stop;
};

// The same rule as the OpenGL device has: a benchmark must not count draws that a real device refuses.
bool canReadInstances(const CountingGeometry& geometry, const GeometryDraw& draw) {
    if (!geometry.readsInstances)
        return true;
    const uint64_t end = (uint64_t{draw.firstInstance} + draw.instanceCount) * draw.instanceStride;
    return draw.instances && draw.instanceStride > 0 && end <= draw.instances->getSize();
}

} // namespace

CountingDevice::CountingDevice() {
    // Told as software, so that nobody waits for timer queries that have nothing to measure.
    _info.vendor = "Orvane";
    _info.renderer = "counting device, draws nothing";
    _info.version = "1";
    _info.software = true;
    _info.headless = true;
    // What every device of OpenGL 4.5 offers.
    _info.maxTextureSize = 16384;
    _info.maxCubeSize = 16384;
    _info.maxArraySlices = 2048;
    _info.maxSamples = 4;
    _info.maxColorTargets = MAX_COLOR_TARGETS;
    _info.maxTextureUnits = MAX_UNITS;
    _info.maxConstantBufferSize = 16384;
}

CountingDevice::~CountingDevice() = default;

ovMemory::BufferView<const unsigned char> CountingDevice::getBytes(const GpuBuffer& buffer) {
    return static_cast<const CountingBuffer&>(buffer).bytes;
}

ovMemory::UniquePtr<GpuTexture> CountingDevice::createTexture(const TextureDesc& desc,
                                                              ovMemory::String& error) {
    if (desc.width == 0 || desc.height == 0 || desc.slices == 0 || desc.mips == 0) {
        error = "A texture of no texels cannot be made";
        return nullptr;
    }
    ++_counts.objects;
    return std::make_unique<CountingTexture>(desc);
}

ovMemory::UniquePtr<GpuSampler> CountingDevice::createSampler(const SamplerDesc&, ovMemory::String&) {
    ++_counts.objects;
    return std::make_unique<CountingSampler>();
}

ovMemory::UniquePtr<GpuBuffer> CountingDevice::createBuffer(unsigned int size, BUFFER_USAGE usage,
                                                            ovMemory::String& error) {
    if (size == 0 || (usage == BUFFER_USAGE::CONSTANTS && size > _info.maxConstantBufferSize)) {
        error = "A buffer of " + std::to_string(size) + " bytes cannot be made: one of constants has 1 to " +
                std::to_string(_info.maxConstantBufferSize) + ", others have 1 or more";
        return nullptr;
    }
    ++_counts.objects;
    return std::make_unique<CountingBuffer>(size);
}

ovMemory::UniquePtr<GpuGeometry> CountingDevice::createGeometry(const GeometryDesc& desc,
                                                                ovMemory::String& error) {
    if (!desc.vertices || desc.stride == 0) {
        error = "A geometry needs a buffer of vertices and their size in bytes";
        return nullptr;
    }
    ++_counts.objects;
    auto geometry = std::make_unique<CountingGeometry>();
    geometry->vertices = static_cast<CountingBuffer*>(desc.vertices);
    geometry->indices = static_cast<CountingBuffer*>(desc.indices);
    geometry->readsInstances = !desc.instanceAttributes.empty();
    return geometry;
}

ovMemory::UniquePtr<GpuTarget> CountingDevice::createTarget(const TargetDesc&, ovMemory::String&) {
    ++_counts.objects;
    return std::make_unique<CountingTarget>();
}

ovMemory::UniquePtr<GpuProgram> CountingDevice::createProgram(const shading::CompiledProgram&,
                                                              ovMemory::BufferView<const unsigned char>,
                                                              unsigned int, ovMemory::String&) {
    ++_counts.objects;
    ++_statistics.programsCompiled;
    return std::make_unique<CountingProgram>();
}

// False is what a driver without binaries answers, so that the cache keeps texts only.
bool CountingDevice::getProgramBinary(const GpuProgram&, ovMemory::Buffer<unsigned char>&, unsigned int&) {
    return false;
}

ovMemory::UniquePtr<GpuTimer> CountingDevice::createTimer() {
    return std::make_unique<CountingTimer>();
}

void CountingDevice::uploadTexture(GpuTexture&, unsigned int, unsigned int,
                                   ovMemory::BufferView<const unsigned char>, unsigned int) {
    ++_counts.textureUploads;
}

bool CountingDevice::readTexture(GpuTexture&, unsigned int, unsigned int, ovMemory::Buffer<unsigned char>&) {
    return false;
}

void CountingDevice::updateBuffer(GpuBuffer& buffer, unsigned int offset,
                                  ovMemory::BufferView<const unsigned char> data) {
    auto& target = static_cast<CountingBuffer&>(buffer);
    if (offset > target.getSize() || data.size() > target.getSize() - offset) {
        _report("Nothing was written to a buffer: " + std::to_string(data.size()) + " bytes from byte " +
                std::to_string(offset) + " do not fit in its " + std::to_string(target.getSize()));
        return;
    }
    if (data.empty())
        return;
    std::memcpy(target.bytes.data() + offset, data.data(), data.size());
    ++_statistics.bufferUploads;
    ++_counts.bufferUploads;
    _counts.uploadedBytes += data.size();
    // A device may still be drawing the frame before when this one is asked for.
    if (target.lastRead + 1 >= _frame)
        ++_counts.uploadsToBuffersInUse;
}

void CountingDevice::copyBuffer(GpuBuffer& source, unsigned int sourceOffset, GpuBuffer& target,
                                unsigned int targetOffset, unsigned int size) {
    const auto& from = static_cast<CountingBuffer&>(source).bytes;
    auto& to = static_cast<CountingBuffer&>(target).bytes;
    const auto fits = [size](const auto& bytes, unsigned int offset) {
        return offset <= bytes.size() && size <= bytes.size() - offset;
    };
    if (!fits(from, sourceOffset) || !fits(to, targetOffset)) {
        _report("Nothing was copied between buffers: " + std::to_string(size) + " bytes from byte " +
                std::to_string(sourceOffset) + " of " + std::to_string(from.size()) + " to byte " +
                std::to_string(targetOffset) + " of " + std::to_string(to.size()));
        return;
    }
    std::memmove(to.data() + targetOffset, from.data() + sourceOffset, size);
    ++_counts.bufferCopies;
}

template <typename T>
void CountingDevice::_set(T& sent, const T& wanted) {
    // Every call counts here and only real changes below: the first is what the library costs, the second
    // what a driver would.
    ++_counts.setCalls;
    if (sent == wanted)
        return;
    sent = wanted;
    ++_statistics.stateChanges;
}

void CountingDevice::setTarget(GpuTarget& target, const Rectangle& viewport) {
    _set(_state.target, &target);
    _state.viewport = viewport;
}

void CountingDevice::clearColor(unsigned int, const std::array<float, 4>&) {
    ++_counts.clears;
}

void CountingDevice::clearDepthStencil(bool, float, bool, unsigned int) {
    ++_counts.clears;
}

void CountingDevice::setProgram(GpuProgram& program) {
    _set(_state.program, &program);
}

void CountingDevice::setBlendState(const BlendStateDesc& state) {
    _set(_state.blend, state);
}

void CountingDevice::setRasterState(const RasterStateDesc& state) {
    _set(_state.raster, state);
}

void CountingDevice::setDepthStencilState(const DepthStencilStateDesc& state) {
    _set(_state.depth, state);
}

void CountingDevice::setTextureUnit(unsigned int unit, GpuTexture* texture, GpuSampler* sampler, TEXTURE_TYPE,
                                    bool) {
    if (unit < MAX_UNITS)
        _set(_state.units[unit], {texture, sampler});
    else
        _report("Texture unit " + std::to_string(unit) + " is beyond the device's limit of " +
                std::to_string(MAX_UNITS));
}

void CountingDevice::setConstantBuffer(unsigned int slot, GpuBuffer* buffer) {
    if (slot >= MAX_SLOTS) {
        _report("Constant buffer " + std::to_string(slot) + " is beyond the device's limit of " +
                std::to_string(MAX_SLOTS));
        return;
    }
    _set(_state.slots[slot], buffer);
    if (buffer) // read by the draws that follow
        static_cast<CountingBuffer*>(buffer)->lastRead = _frame;
}

void CountingDevice::drawFullScreenQuad() {
    if (!_canDraw())
        return;
    ++_statistics.drawCalls;
    ++_counts.draws;
}

void CountingDevice::drawGeometry(GpuGeometry& geometry, const GeometryDraw& draw) {
    auto& drawn = static_cast<CountingGeometry&>(geometry);
    if (!canReadInstances(drawn, draw)) {
        _report("Nothing was drawn: " + std::to_string(draw.instanceCount) + " instances of " +
                std::to_string(draw.instanceStride) + " bytes from instance " +
                std::to_string(draw.firstInstance) + " on are not in their buffer");
        return;
    }
    if (!_canDraw())
        return;
    // Reading is what makes an upload wait, so each draw notes what it reads.
    drawn.vertices->lastRead = _frame;
    if (drawn.indices)
        drawn.indices->lastRead = _frame;
    if (draw.instances)
        static_cast<CountingBuffer*>(draw.instances)->lastRead = _frame;
    ++_statistics.drawCalls;
    ++_counts.draws;
    _counts.instances += draw.instanceCount;
}

bool CountingDevice::_canDraw() {
    if (_state.target && _state.program)
        return true;
    _report(_state.target ? "Nothing was drawn: no program is set" : "Nothing was drawn: no target is set");
    return false;
}

void CountingDevice::invalidateState() {
    _state = {};
}

void CountingDevice::getWindowSize(unsigned int& width, unsigned int& height) const {
    width = height = 0;
}

ovMemory::String CountingDevice::takeDebugErrors() {
    return std::exchange(_errors, {});
}

void CountingDevice::_report(ovMemory::StringView error) {
    (_errors += _errors.empty() ? "" : "\n") += error;
}

} // namespace ovGraphics::device
