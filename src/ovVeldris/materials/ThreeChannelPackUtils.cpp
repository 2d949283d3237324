#include <ovVeldris/materials/ThreeChannelPackUtils.h>

namespace ovVeldris {

ovMemory::StringView ThreeChannelPackUtils::enumToStringLower(THREE_CHANNEL_PACK pack) {
    return ovMemory::enumToText(pack, "unknown");
}

THREE_CHANNEL_PACK ThreeChannelPackUtils::stringLowerToEnum(ovMemory::StringView text) {
    return ovMemory::enumFromText<THREE_CHANNEL_PACK>(text).value_or(THREE_CHANNEL_PACK::RGB);
}

} // namespace ovVeldris
