// Counts what the test program and the libraries that it loads take from the heap with new.
#pragma once

#include <cstddef>

/// From its making on: bytes of the heap in use, and the most of them at any time. Threads count together.
class HeapCount {
public:
    HeapCount();
    std::size_t getPeak() const; ///< bytes beyond those in use at the start

private:
    std::size_t _start;
};
