// A buffer that changes while the device still reads what it held before.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

/// Frames that may be on their way at the same time: the one that is being made and two that the device may
/// not have finished. What one of them reads is not written.
inline constexpr uint64_t FRAMES_IN_FLIGHT = 3;

/// Bytes of the CPU on the device, in copies that take turns: a change goes to a copy that no frame on its
/// way reads. What never changes has one copy. Each copy is told only the pages that changed since it was
/// written.
class OV_API BufferRing {
public:
    /// Bytes that are uploaded together.
    static constexpr std::size_t PAGE_SIZE = 4096;

    explicit BufferRing(BUFFER_USAGE usage)
        : _usage(usage) {}
    ~BufferRing();
    BufferRing(const BufferRing&) = delete;
    BufferRing& operator=(const BufferRing&) = delete;

    /// Tells that bytes are new or other since the last update().
    void markChanged(std::size_t begin, std::size_t end);
    /// The copy that holds the bytes, to be read by this frame.
    /// @param bytes all of them; none gives null without an error
    /// @param frame number of the frame, never falling
    /// @return null with the reason in error when the device refuses
    GpuBuffer* update(Device& device, ovMemory::BufferView<const unsigned char> bytes, uint64_t frame,
                      ovMemory::String& error);
    /// What the last update() returned.
    GpuBuffer* getCurrent() const {
        return _current < _copies.size() ? _copies[_current].buffer.get() : nullptr;
    }
    /// Frees the copies.
    void clear();

private:
    struct Copy {
        ovMemory::UniquePtr<GpuBuffer> buffer;
        ovMemory::Buffer<unsigned char> stalePages; ///< 1 for each page that must be uploaded
        uint64_t lastFrame = 0;                     ///< that reads it
    };

    void _tellCopies(std::size_t size);
    Copy& _chooseCopy(uint64_t frame);
    bool _upload(Copy& copy, Device& device, ovMemory::BufferView<const unsigned char> bytes,
                 ovMemory::String& error);

    BUFFER_USAGE _usage;
    ovMemory::Buffer<Copy> _copies;
    std::size_t _current = 0;
    ovMemory::Buffer<unsigned char> _changedPages; ///< since the last update
    bool _changed = false;
};

} // namespace ovGraphics::device
