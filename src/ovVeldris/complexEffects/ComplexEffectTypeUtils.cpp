#include <ovVeldris/complexEffects/ComplexEffectTypeUtils.h>

namespace ovVeldris {

ovMemory::StringView ComplexEffectTypeUtils::enumToString(COMPLEX_EFFECT_TYPE type) {
    return ovMemory::enumToText(type, "UNKNOWN");
}

COMPLEX_EFFECT_TYPE ComplexEffectTypeUtils::stringToEnum(ovMemory::StringView text) {
    return ovMemory::enumFromText<COMPLEX_EFFECT_TYPE>(text).value_or(COMPLEX_EFFECT_TYPE::UNKNOWN);
}

} // namespace ovVeldris
