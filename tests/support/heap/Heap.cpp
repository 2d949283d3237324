#include <atomic>
#include <cstdlib>
#include <limits>
#include <malloc.h>
#include <new>
#include <support/heap/Heap.h>

namespace {

constexpr std::size_t NEVER = std::numeric_limits<std::size_t>::max();

thread_local std::size_t allocationCount = 0;
thread_local std::size_t failingAllocation = NEVER;
std::atomic<std::size_t> bytesInUse = 0;
std::atomic<std::size_t> mostBytesInUse = 0;

void* allocate(std::size_t size) noexcept {
    if (allocationCount++ == failingAllocation) {
        failingAllocation = NEVER;
        return nullptr;
    }
    void* const memory = std::malloc(size > 0 ? size : 1);
    const std::size_t taken = malloc_usable_size(memory);
    const std::size_t now = bytesInUse.fetch_add(taken, std::memory_order_relaxed) + taken;
    std::size_t most = mostBytesInUse.load(std::memory_order_relaxed);
    while (most < now && !mostBytesInUse.compare_exchange_weak(most, now, std::memory_order_relaxed)) {
    }
    return memory;
}

void* allocateOrThrow(std::size_t size) {
    if (void* memory = allocate(size))
        return memory;
    throw std::bad_alloc();
}

void release(void* memory) noexcept {
    bytesInUse.fetch_sub(malloc_usable_size(memory), std::memory_order_relaxed);
    std::free(memory);
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

HeapPeak::HeapPeak()
    : _start(bytesInUse) {
    mostBytesInUse = _start;
}

std::size_t HeapPeak::getBytes() const {
    return mostBytesInUse - _start;
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
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}
