// The family's owning and viewing types: the standard library's, under the family's names.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ovMemory {

/// Owning text, UTF-8 where it reaches users.
using String = std::string;

/// A slice of text owned by another object.
using StringView = std::string_view;

/// The only owner of an object.
template <typename T>
using UniquePtr = std::unique_ptr<T>;

/// Owning, contiguous, growing storage. Never Buffer<bool>, which would not be contiguous.
template <typename T>
using Buffer = std::vector<T>;

/// A slice of contiguous storage owned by another object.
template <typename T>
using BufferView = std::span<T>;

} // namespace ovMemory
