#include <ovVeldris/materials/ThreeChannelPackUtils.h>

#include <ovVeldris/core/EnumTexts.h>

namespace ovVeldris {

namespace {

constexpr EnumText<THREE_CHANNEL_PACK> PACK_TEXTS[] = {
    {THREE_CHANNEL_PACK::RGB, "rgb"}, {THREE_CHANNEL_PACK::RBG, "rbg"}, {THREE_CHANNEL_PACK::RGA, "rga"},
    {THREE_CHANNEL_PACK::RAG, "rag"}, {THREE_CHANNEL_PACK::RBA, "rba"}, {THREE_CHANNEL_PACK::RAB, "rab"},
    {THREE_CHANNEL_PACK::GRB, "grb"}, {THREE_CHANNEL_PACK::GBR, "gbr"}, {THREE_CHANNEL_PACK::GRA, "gra"},
    {THREE_CHANNEL_PACK::GAR, "gar"}, {THREE_CHANNEL_PACK::GBA, "gba"}, {THREE_CHANNEL_PACK::GAB, "gab"},
    {THREE_CHANNEL_PACK::BRG, "brg"}, {THREE_CHANNEL_PACK::BGR, "bgr"}, {THREE_CHANNEL_PACK::BRA, "bra"},
    {THREE_CHANNEL_PACK::BAR, "bar"}, {THREE_CHANNEL_PACK::BGA, "bga"}, {THREE_CHANNEL_PACK::BAG, "bag"},
    {THREE_CHANNEL_PACK::ARG, "arg"}, {THREE_CHANNEL_PACK::AGR, "agr"}, {THREE_CHANNEL_PACK::AGB, "agb"},
    {THREE_CHANNEL_PACK::ABG, "abg"}, {THREE_CHANNEL_PACK::ARB, "arb"}, {THREE_CHANNEL_PACK::ABR, "abr"},
};

} // namespace

ovMemory::StringView ThreeChannelPackUtils::enumToStringLower(THREE_CHANNEL_PACK pack) {
    return textOf(PACK_TEXTS, pack, "unknown");
}

THREE_CHANNEL_PACK ThreeChannelPackUtils::stringLowerToEnum(ovMemory::StringView text) {
    return valueOf(PACK_TEXTS, text, THREE_CHANNEL_PACK::RGB);
}

} // namespace ovVeldris
