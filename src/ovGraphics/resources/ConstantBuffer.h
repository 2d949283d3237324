// Constant buffers: lists of memory slots that become the constants of a shader.
#pragma once

#include <ovGraphics/resources/ShaderPassMemorySlot.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

struct ConstantBlock;
class ConstantPool;

namespace device {
class GpuBuffer;
}

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

    /// The bytes of the slots on the device, shared with every buffer that holds the same. Slots whose source
    /// did not change are not evaluated again, and bytes that are there are not uploaded again. There are at
    /// least minimumSize bytes, the rest zeros. @return null when the device refuses, after one log line for
    /// a run of refusals
    device::GpuBuffer* update(const PassEnvironment& environment, unsigned int minimumSize);

    /// Whether the last update() found slots that only evaluating tells of, as those of the time.
    bool mustBeEvaluated() const { return _mustBeEvaluated; }

    /// Lets the device's bytes go.
    void unload();

private:
    bool _isCurrent(const PassEnvironment& environment, unsigned int minimumSize) const;
    void _evaluate(const PassEnvironment& environment, unsigned int minimumSize);
    void _reportRefusal(const System& system, ovMemory::StringView reason);

    unsigned int _index;
    unsigned int _stage;
    ovMemory::Buffer<ovMemory::UniquePtr<ShaderPassMemorySlot>> _slots;
    ovMemory::Buffer<uint64_t> _sources; ///< of the slots when they were evaluated
    ovMemory::Buffer<unsigned char> _bytes;
    const ConstantBlock* _block = nullptr; ///< those bytes on the device
    ConstantPool* _pool = nullptr;         ///< the block's
    bool _mustBeEvaluated = true;
    bool _refusalLogged = false;
};

} // namespace ovGraphics
