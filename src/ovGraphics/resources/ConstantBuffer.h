// Constant buffers: lists of memory slots that become the constants of a shader.
#pragma once

#include <ovGraphics/resources/ShaderPassMemorySlot.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

namespace device {
class Device;
class GpuBuffer;
} // namespace device

/// The constants of one buffer index of a shader: slots laid out one after another in registers.
class OV_API ConstantBuffer : public ovMemory::Borrowable {
public:
    ConstantBuffer(unsigned int index, unsigned int stage);
    ~ConstantBuffer();

    unsigned int getIndex() const { return _index; }
    unsigned int getStage() const { return _stage; }

    /// Appends a slot. Owned by the buffer and never moved.
    ShaderPassMemorySlot* addPassMemorySlot();
    /// The slot at a position, or null.
    ShaderPassMemorySlot* getPassMemorySlot(unsigned int index) const;
    unsigned int getPassMemorySlotCount() const { return static_cast<unsigned int>(_slots.size()); }

    /// Evaluates every slot and uploads the bytes if they differ from those uploaded last. The device's
    /// buffer has at least minimumSize bytes, the rest zeros. @return null when the device refuses, after one
    /// log line for a run of refusals
    device::GpuBuffer* update(device::Device& device, const PassEnvironment& environment,
                              unsigned int minimumSize);

    /// Frees the device's buffer.
    void unload();

private:
    void _reportRefusal(const System& system, ovMemory::StringView reason);

    unsigned int _index;
    unsigned int _stage;
    ovMemory::Buffer<ovMemory::UniquePtr<ShaderPassMemorySlot>> _slots;
    ovMemory::Buffer<unsigned char> _bytes;
    ovMemory::Buffer<unsigned char> _uploadedBytes;
    ovMemory::UniquePtr<device::GpuBuffer> _gpuBuffer;
    bool _refusalLogged = false;
};

} // namespace ovGraphics
