#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <ovVeldris/environment/irradiance/HeapCount.h>

namespace {

std::atomic<std::size_t> inUse = 0;
std::atomic<std::size_t> peak = 0;

} // namespace

HeapCount::HeapCount()
    : _start(inUse) {
    peak = _start;
}

std::size_t HeapCount::getPeak() const {
    return peak - _start;
}

// Replaces the program's own; the forms for arrays call these.
void* operator new(std::size_t size) {
    void* const memory = std::malloc(size > 0 ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    const std::size_t now = inUse += malloc_usable_size(memory);
    std::size_t most = peak;
    while (most < now && !peak.compare_exchange_weak(most, now)) {
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    if (memory)
        inUse -= malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
