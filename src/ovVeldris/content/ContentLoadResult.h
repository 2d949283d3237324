// What loading declarations gives.
#pragma once

#include <cstdint>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// What a load of declarations made, and what went wrong with the rest. One made by default is empty, of
/// status 0.
template <typename T>
struct ContentLoadResult {
    /// Everything that was declared was processed.
    static constexpr int32_t DONE = 0;
    /// An array was processed, but at least one of its entries failed.
    static constexpr int32_t PARTLY_DONE = 1;
    /// The load failed as a whole.
    static constexpr int32_t FAILED = 2;

    /// One line a problem, in the order met.
    ovMemory::Buffer<ovMemory::String> _errors;
    /// The objects that were created or found, in the order of their declarations. They belong to their
    /// manager.
    ovMemory::Buffer<T*> _results;
    /// DONE, PARTLY_DONE or FAILED.
    int32_t _status = DONE;
    /// What each of the errors leaves out, as their words are part of the interface: the entry, counted from
    /// 1, and what it has. Empty where there is nothing to add.
    ovMemory::Buffer<ovMemory::String> _details = {};
};

} // namespace ovVeldris
