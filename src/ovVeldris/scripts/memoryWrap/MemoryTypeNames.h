// What scripts call buffers and what looks into them.
#pragma once

#include <ovVeldris/scripts/commonWrap/TypeNames.h>

namespace ovMemoryWrap {

/// Bytes that a script owns.
using ByteBuffer = ovMemory::Buffer<unsigned char>;

/// A buffer read as elements of a type; bytes at its end that make no whole element are left out. Owns
/// nothing.
template <typename T>
struct BufferCast {
    ovMemory::BufferView<T> elements;

    std::size_t size() const { return elements.size(); }
    T& operator[](std::size_t index) const { return elements[index]; }
};

} // namespace ovMemoryWrap

namespace ovCommonWrap {

template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemoryWrap::BufferCast<int>> = "ovMemory.BufferCastInt";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemoryWrap::BufferCast<float>> = "ovMemory.BufferCastFloat";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemoryWrap::BufferCast<double>> =
    "ovMemory.BufferCastDouble";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemoryWrap::BufferCast<ovMaths::Vector>> =
    "ovMaths.BufferCastVector";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::BufferView<unsigned char>> = "ovMemory.BufferView";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::BufferView<int>> = "ovMemory.BufferViewInt";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::BufferView<float>> = "ovMemory.BufferViewFloat";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::BufferView<double>> = "ovMemory.BufferViewDouble";
template <>
inline constexpr ovMemory::StringView TYPE_NAME<ovMemory::BufferView<ovMaths::Vector>> =
    "ovMaths.BufferViewVector";

} // namespace ovCommonWrap
