#include <ovVeldris/complexEffects/ComplexEffectTypeUtils.h>

#include <ovVeldris/core/EnumTexts.h>

namespace ovVeldris {

namespace {

constexpr EnumText<COMPLEX_EFFECT_TYPE> TYPE_TEXTS[] = {
    {COMPLEX_EFFECT_TYPE::BLUR, "BLUR"},
    {COMPLEX_EFFECT_TYPE::DOF, "DOF"},
};

} // namespace

ovMemory::StringView ComplexEffectTypeUtils::enumToString(COMPLEX_EFFECT_TYPE type) {
    return textOf(TYPE_TEXTS, type, "UNKNOWN");
}

COMPLEX_EFFECT_TYPE ComplexEffectTypeUtils::stringToEnum(ovMemory::StringView text) {
    return valueOf(TYPE_TEXTS, text, COMPLEX_EFFECT_TYPE::UNKNOWN);
}

} // namespace ovVeldris
