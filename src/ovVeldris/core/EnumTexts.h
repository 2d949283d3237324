// Enumerations and their texts.
#pragma once

#include <cstddef>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// A value of an enumeration and its text.
template <typename Enum>
struct EnumText {
    Enum value;
    ovMemory::StringView text;
};

/// The text of a value in a table, or the fallback for a value that the table lacks.
template <typename Enum, std::size_t COUNT>
constexpr ovMemory::StringView textOf(const EnumText<Enum> (&table)[COUNT], Enum value,
                                      ovMemory::StringView fallback) {
    for (const EnumText<Enum>& entry : table)
        if (entry.value == value)
            return entry.text;
    return fallback;
}

/// The value of an exact, case-sensitive text, or the fallback for a text that the table lacks.
template <typename Enum, std::size_t COUNT>
constexpr Enum valueOf(const EnumText<Enum> (&table)[COUNT], ovMemory::StringView text, Enum fallback) {
    for (const EnumText<Enum>& entry : table)
        if (entry.text == text)
            return entry.value;
    return fallback;
}

} // namespace ovVeldris
