// Which channel of a texture holds a number.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// The channel of a texture that holds a scalar property. The numbers are part of the interface of scripts
/// and files.
enum class ONE_CHANNEL_PACK : uint32_t { R = 0, G = 1, B = 2, A = 3 };

inline constexpr ovMemory::EnumEntry<ONE_CHANNEL_PACK> ONE_CHANNEL_PACK_ENTRIES[] = {
    {ONE_CHANNEL_PACK::R, "r"},
    {ONE_CHANNEL_PACK::G, "g"},
    {ONE_CHANNEL_PACK::B, "b"},
    {ONE_CHANNEL_PACK::A, "a"},
};
constexpr ovMemory::EnumTable<ONE_CHANNEL_PACK> enumTable(ONE_CHANNEL_PACK) {
    return {"ONE_CHANNEL_PACK", ONE_CHANNEL_PACK_ENTRIES};
}

/// Text of ONE_CHANNEL_PACK: the names of its values in lower case.
class OV_API OneChannelPackUtils {
public:
    /// "unknown" for a value that has no name.
    static ovMemory::StringView enumToStringLower(ONE_CHANNEL_PACK pack);
    /// The channel of an exact, case-sensitive text. Every text but "r", "g" and "b" means A.
    static ONE_CHANNEL_PACK stringLowerToEnum(ovMemory::StringView text);
};

} // namespace ovVeldris
