#include <ovVeldris/materials/OneChannelPackUtils.h>

#include <ovVeldris/core/EnumTexts.h>

namespace ovVeldris {

namespace {

constexpr EnumText<ONE_CHANNEL_PACK> PACK_TEXTS[] = {
    {ONE_CHANNEL_PACK::R, "r"},
    {ONE_CHANNEL_PACK::G, "g"},
    {ONE_CHANNEL_PACK::B, "b"},
    {ONE_CHANNEL_PACK::A, "a"},
};

} // namespace

ovMemory::StringView OneChannelPackUtils::enumToStringLower(ONE_CHANNEL_PACK pack) {
    return textOf(PACK_TEXTS, pack, "unknown");
}

ONE_CHANNEL_PACK OneChannelPackUtils::stringLowerToEnum(ovMemory::StringView text) {
    return valueOf(PACK_TEXTS, text, ONE_CHANNEL_PACK::A);
}

} // namespace ovVeldris
