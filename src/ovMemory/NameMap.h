// Owned objects by name.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <ovMemory/Memory.h>

namespace ovMemory {

/// 64-bit FNV-1a of a run of bytes (Fowler, Noll, Vo).
constexpr uint64_t hashFnv1a64(StringView bytes) {
    uint64_t hash = 0xcbf29ce484222325ull;
    for (const char byte : bytes) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 0x100000001b3ull;
    }
    return hash;
}

/// A map from names to values, in the order of the names, compared byte for byte. Views look names up, so
/// that nothing is copied.
// A hash map finds faster, but its order depends on what was put in before: files that list what a map holds
// would change from one save to the next.
template <typename Value>
using NameMap = std::map<String, Value, std::less<>>;

/// The value at a position of the order, or null when index is not below the size.
template <typename T>
T* getByIndex(const NameMap<UniquePtr<T>>& map, unsigned int index) {
    return index < map.size() ? std::next(map.begin(), index)->second.get() : nullptr;
}

/// The value of a name, or null.
template <typename T>
T* find(const NameMap<UniquePtr<T>>& map, StringView name) {
    const auto entry = map.find(name);
    return entry == map.end() ? nullptr : entry->second.get();
}

} // namespace ovMemory
