#include <ovVeldris/materials/OneChannelPackUtils.h>

namespace ovVeldris {

ovMemory::StringView OneChannelPackUtils::enumToStringLower(ONE_CHANNEL_PACK pack) {
    return ovMemory::enumToText(pack, "unknown");
}

ONE_CHANNEL_PACK OneChannelPackUtils::stringLowerToEnum(ovMemory::StringView text) {
    return ovMemory::enumFromText<ONE_CHANNEL_PACK>(text).value_or(ONE_CHANNEL_PACK::A);
}

} // namespace ovVeldris
