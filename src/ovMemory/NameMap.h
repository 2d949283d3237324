// Owned objects by name.
#pragma once

#include <cstdint>
#include <functional>
#include <ovMemory/Memory.h>
#include <unordered_map>

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

/// Hash of names for the maps below; takes views, so that looking a name up copies nothing.
struct NameHash {
    using is_transparent = void;
    std::size_t operator()(StringView name) const { return hashFnv1a64(name); }
};

/// A map from names, compared byte for byte, to values. Its iteration order is stable between changes.
template <typename Value>
using NameMap = std::unordered_map<String, Value, NameHash, std::equal_to<>>;

/// The value at a position of the iteration order, or null when index is not below the size.
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
