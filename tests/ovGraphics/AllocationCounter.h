// Counts the heap allocations of a thread in the test program.
#pragma once

#include <cstddef>

/// Calls of operator new by the calling thread since the program started.
std::size_t getAllocationCount();
