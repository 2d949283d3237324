#include <cstdlib>
#include <new>
#include <ovGraphics/AllocationCounter.h>

namespace {

thread_local std::size_t allocationCount = 0;

void* allocate(std::size_t size) {
    ++allocationCount;
    if (void* memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

} // namespace

std::size_t getAllocationCount() {
    return allocationCount;
}

// Replaces the library's for the whole program, shared libraries included; the forms that are not here call
// these.
void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
