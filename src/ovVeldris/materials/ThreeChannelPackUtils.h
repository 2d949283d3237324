// Which channels of a texture hold a vector.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// The channels of a texture that hold x, y and z of a property, in that order. The numbers are part of the
/// interface of scripts and files; their order follows no rule.
enum class THREE_CHANNEL_PACK : uint32_t {
    RGB = 0,
    RBG = 1,
    RGA = 2,
    RAG = 3,
    RBA = 4,
    RAB = 5,
    GRB = 6,
    GBR = 7,
    GRA = 8,
    GAR = 9,
    GBA = 10,
    GAB = 11,
    BRG = 12,
    BGR = 13,
    BRA = 14,
    BAR = 15,
    BGA = 16,
    BAG = 17,
    ARG = 18,
    AGR = 19,
    AGB = 20,
    ABG = 21,
    ARB = 22,
    ABR = 23
};

inline constexpr ovMemory::EnumEntry<THREE_CHANNEL_PACK> THREE_CHANNEL_PACK_ENTRIES[] = {
    {THREE_CHANNEL_PACK::RGB, "rgb"}, {THREE_CHANNEL_PACK::RBG, "rbg"}, {THREE_CHANNEL_PACK::RGA, "rga"},
    {THREE_CHANNEL_PACK::RAG, "rag"}, {THREE_CHANNEL_PACK::RBA, "rba"}, {THREE_CHANNEL_PACK::RAB, "rab"},
    {THREE_CHANNEL_PACK::GRB, "grb"}, {THREE_CHANNEL_PACK::GBR, "gbr"}, {THREE_CHANNEL_PACK::GRA, "gra"},
    {THREE_CHANNEL_PACK::GAR, "gar"}, {THREE_CHANNEL_PACK::GBA, "gba"}, {THREE_CHANNEL_PACK::GAB, "gab"},
    {THREE_CHANNEL_PACK::BRG, "brg"}, {THREE_CHANNEL_PACK::BGR, "bgr"}, {THREE_CHANNEL_PACK::BRA, "bra"},
    {THREE_CHANNEL_PACK::BAR, "bar"}, {THREE_CHANNEL_PACK::BGA, "bga"}, {THREE_CHANNEL_PACK::BAG, "bag"},
    {THREE_CHANNEL_PACK::ARG, "arg"}, {THREE_CHANNEL_PACK::AGR, "agr"}, {THREE_CHANNEL_PACK::AGB, "agb"},
    {THREE_CHANNEL_PACK::ABG, "abg"}, {THREE_CHANNEL_PACK::ARB, "arb"}, {THREE_CHANNEL_PACK::ABR, "abr"},
};
constexpr ovMemory::EnumTable<THREE_CHANNEL_PACK> enumTable(THREE_CHANNEL_PACK) {
    return {"THREE_CHANNEL_PACK", THREE_CHANNEL_PACK_ENTRIES};
}

/// Text of THREE_CHANNEL_PACK: the names of its values in lower case.
class OV_API ThreeChannelPackUtils {
public:
    /// "unknown" for a value that has no name.
    static ovMemory::StringView enumToStringLower(THREE_CHANNEL_PACK pack);
    /// The channels of an exact, case-sensitive text; RGB for any other. Safe to call from several threads.
    static THREE_CHANNEL_PACK stringLowerToEnum(ovMemory::StringView text);
};

} // namespace ovVeldris
