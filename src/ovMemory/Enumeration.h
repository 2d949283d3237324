// Enumerations as tables of values and texts.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ovMemory {

/// A value of an enumeration and its text: the name of the enumerator, as files and scripts write it.
template <typename Enum>
struct EnumEntry {
    Enum value;
    std::string_view text;
};

/// Everything that messages, files, command lines and scripts know of an enumeration.
template <typename Enum>
struct EnumTable {
    std::string_view name;                    ///< of the enumeration: "CULL_MODE"
    std::span<const EnumEntry<Enum>> entries; ///< each value once, in the order of the declaration

    constexpr auto begin() const { return entries.begin(); }
    constexpr auto end() const { return entries.end(); }
    constexpr std::size_t size() const { return entries.size(); }
};

// An enumeration gets its table beside its declaration, as a function that is found by its argument's type:
//
//     inline constexpr ovMemory::EnumEntry<CULL_MODE> CULL_MODE_ENTRIES[] = {{CULL_MODE::NONE, "NONE"}, ...};
//     constexpr ovMemory::EnumTable<CULL_MODE> enumTable(CULL_MODE) { return {"CULL_MODE",
//     CULL_MODE_ENTRIES}; }

/// The table of an enumeration.
template <typename Enum>
constexpr EnumTable<Enum> enumTableOf() {
    return enumTable(Enum{});
}

/// The text of a value, or the fallback for a value that the table lacks.
template <typename Enum>
constexpr std::string_view enumToText(Enum value, std::string_view fallback = {}) {
    for (const EnumEntry<Enum>& entry : enumTableOf<Enum>())
        if (entry.value == value)
            return entry.text;
    return fallback;
}

/// The value of exactly this text; nothing for a text that the table lacks.
template <typename Enum>
constexpr std::optional<Enum> enumFromText(std::string_view text) {
    for (const EnumEntry<Enum>& entry : enumTableOf<Enum>())
        if (entry.text == text)
            return entry.value;
    return std::nullopt;
}

/// All texts for a message: "NONE, FRONT or BACK".
template <typename Enum>
std::string enumTexts() {
    const EnumTable<Enum> table = enumTableOf<Enum>();
    std::string texts;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (i > 0)
            texts += i + 1 == table.size() ? " or " : ", ";
        texts += table.entries[i].text;
    }
    return texts;
}

} // namespace ovMemory
