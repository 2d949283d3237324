// The heap of the test program: counted, and short when a test wants it so.
#pragma once

#include <cstddef>

/// Calls of operator new by the calling thread since the program started.
std::size_t getAllocationCount();

/// Makes one call of operator new by the calling thread throw: the one after so many others.
void failAllocationAfter(std::size_t others);

/// Makes none throw any more. Returns whether the one was still to come.
bool stopFailingAllocations();
