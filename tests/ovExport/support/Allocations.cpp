#include <cstdlib>
#include <limits>
#include <new>
#include <ovExport/support/Allocations.h>

namespace {

constexpr std::size_t NEVER = std::numeric_limits<std::size_t>::max();

thread_local std::size_t allocationCount = 0;
thread_local std::size_t failingAllocation = NEVER;

void* allocate(std::size_t size) noexcept {
    if (allocationCount++ == failingAllocation) {
        failingAllocation = NEVER;
        return nullptr;
    }
    return std::malloc(size > 0 ? size : 1);
}

void* allocateOrThrow(std::size_t size) {
    if (void* memory = allocate(size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

std::size_t getAllocationCount() {
    return allocationCount;
}

void failAllocationAfter(std::size_t others) {
    failingAllocation = allocationCount + others;
}

bool stopFailingAllocations() {
    const bool wasToCome = failingAllocation != NEVER;
    failingAllocation = NEVER;
    return wasToCome;
}

// Replaces the library's for the whole program, shared libraries included. All forms but those for types of
// extended alignment, which come in pairs of their own: the address sanitizer has forms too, and its and
// these must not mix.
void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
