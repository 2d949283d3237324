// The heap of a test program and of the libraries that it loads: counted, and short when a test wants it so.
#pragma once

#include <cstddef>

/// Calls of operator new by the calling thread since the program started.
std::size_t getAllocationCount();

/// Makes one call of operator new by the calling thread throw: the one after so many others.
void failAllocationAfter(std::size_t others);

/// Makes none throw any more. Returns whether the one was still to come.
bool stopFailingAllocations();

/// From its making on: the most bytes of the heap that were in use at any time. Threads count together.
class HeapPeak {
public:
    HeapPeak();
    std::size_t getBytes() const; ///< beyond those in use at the start

private:
    std::size_t _start;
};
