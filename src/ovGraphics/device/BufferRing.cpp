#include <ovGraphics/device/BufferRing.h>

#include <algorithm>

namespace ovGraphics::device {

BufferRing::~BufferRing() = default;

void BufferRing::markChanged(std::size_t begin, std::size_t end) {
    const std::size_t lastPage = std::min((end + PAGE_SIZE - 1) / PAGE_SIZE, _changedPages.size());
    for (std::size_t page = begin / PAGE_SIZE; page < lastPage; ++page)
        _changedPages[page] = 1;
    _changed = true;
}

GpuBuffer* BufferRing::update(Device& device, ovMemory::BufferView<const unsigned char> bytes, uint64_t frame,
                              ovMemory::String& error) {
    if (bytes.empty())
        return nullptr;
    const std::size_t pages = (bytes.size() + PAGE_SIZE - 1) / PAGE_SIZE;
    if (_changed || pages != _changedPages.size() || _copies.empty()) {
        _tellCopies(pages);
        Copy& copy = _chooseCopy(frame);
        if (!_upload(copy, device, bytes, error)) {
            // Without any copy, so that the next frame starts from nothing and tries again.
            clear();
            return nullptr;
        }
    }
    _copies[_current].lastFrame = frame;
    return getCurrent();
}

void BufferRing::clear() {
    _copies.clear();
    _current = 0;
}

// Every copy learns what changed; those whose turn comes later are behind by several changes.
void BufferRing::_tellCopies(std::size_t pages) {
    const std::size_t known = std::min(pages, _changedPages.size());
    for (Copy& copy : _copies) {
        copy.stalePages.resize(pages, 1);
        for (std::size_t page = 0; page < known; ++page)
            copy.stalePages[page] |= _changedPages[page];
    }
    _changedPages.assign(pages, 0);
    _changed = false;
}

BufferRing::Copy& BufferRing::_chooseCopy(uint64_t frame) {
    // So there are never more copies than frames on their way.
    const auto isFree = [frame](const Copy& copy) { return copy.lastFrame + FRAMES_IN_FLIGHT <= frame; };
    auto copy = std::find_if(_copies.begin(), _copies.end(), isFree);
    if (copy == _copies.end()) {
        _copies.emplace_back().stalePages.assign(_changedPages.size(), 1);
        copy = std::prev(_copies.end());
    }
    _current = static_cast<std::size_t>(copy - _copies.begin());
    return *copy;
}

bool BufferRing::_upload(Copy& copy, Device& device, ovMemory::BufferView<const unsigned char> bytes,
                         ovMemory::String& error) {
    if (!copy.buffer || copy.buffer->getSize() < bytes.size()) {
        const std::size_t size = bytes.size() + bytes.size() / 2; // grows in few steps
        copy.buffer = device.createBuffer(static_cast<unsigned int>(size), _usage, error);
        if (!copy.buffer)
            return false;
        std::fill(copy.stalePages.begin(), copy.stalePages.end(), 1);
    }
    const auto end = copy.stalePages.end();
    for (auto page = copy.stalePages.begin(); (page = std::find(page, end, 1)) != end;) {
        // Neighbouring pages go in one call.
        const auto next = std::find(page, end, 0);
        const std::size_t first = static_cast<std::size_t>(page - copy.stalePages.begin()) * PAGE_SIZE;
        const std::size_t count = static_cast<std::size_t>(next - page) * PAGE_SIZE;
        device.updateBuffer(*copy.buffer, static_cast<unsigned int>(first),
                            bytes.subspan(first, std::min(count, bytes.size() - first)));
        std::fill(page, next, static_cast<unsigned char>(0));
        page = next;
    }
    return true;
}

} // namespace ovGraphics::device
