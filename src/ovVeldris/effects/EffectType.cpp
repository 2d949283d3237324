#include <ovVeldris/effects/EffectType.h>

namespace ovVeldris {

ovMemory::StringView EffectTypeUtils::enumToString(EFFECT_TYPE type) {
    return ovMemory::enumToText(type, "UNKNOWN");
}

EFFECT_TYPE EffectTypeUtils::stringToEnum(ovMemory::StringView text) {
    return ovMemory::enumFromText<EFFECT_TYPE>(text).value_or(EFFECT_TYPE::UNKNOWN);
}

} // namespace ovVeldris
