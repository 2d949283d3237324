// The constants of a system on the device: equal bytes are there once.
#pragma once

#include <cstdint>
#include <list>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <unordered_map>

namespace ovGraphics {

namespace device {
class Device;
class GpuBuffer;
} // namespace device

/// Bytes on the device. They do not change while somebody uses the block.
struct ConstantBlock {
    ovMemory::Buffer<unsigned char> bytes;
    ovMemory::UniquePtr<device::GpuBuffer> buffer;
    std::size_t hash = 0;
    unsigned int users = 0;
    uint64_t lastFrame = 0; ///< in which somebody used it
    std::list<ConstantBlock>::iterator self;
};

/// Gives equal bytes one buffer on the device: the view of a frame is uploaded once, and not once a material.
///
/// Other bytes go to another buffer. One that nobody uses any more is written again when the frames that may
/// still read it are through (device::FRAMES_IN_FLIGHT), so that no upload waits for the device. Until then
/// it still serves whoever asks for the same bytes, as of two cameras that see one scene in turns.
class OV_API ConstantPool {
public:
    /// @param frame number of the frame; the device and the number must outlive the pool
    ConstantPool(device::Device& device, const uint64_t& frame);
    ~ConstantPool();
    ConstantPool(const ConstantPool&) = delete;
    ConstantPool& operator=(const ConstantPool&) = delete;

    /// A block with these bytes, with one more user. @return null with the reason in error when the device
    /// refuses
    const ConstantBlock* acquire(ovMemory::BufferView<const unsigned char> bytes, ovMemory::String& error);
    /// Takes one user away.
    void release(const ConstantBlock* block);

private:
    using Blocks = std::list<ConstantBlock>;
    /// Blocks of one size.
    struct SizeClass {
        Blocks used;
        Blocks idle; ///< without users, those that were used least recently first
    };

    ConstantBlock* _find(ovMemory::BufferView<const unsigned char> bytes, std::size_t hash);
    ConstantBlock* _takeIdle(SizeClass& blocks);
    ConstantBlock* _create(SizeClass& blocks, unsigned int size, ovMemory::String& error);

    device::Device& _device;
    const uint64_t& _frame;
    std::unordered_map<std::size_t, SizeClass> _sizes;            ///< by the number of bytes
    std::unordered_multimap<std::size_t, ConstantBlock*> _blocks; ///< by the hash of their bytes
};

} // namespace ovGraphics
