#include <ovVeldris/core/EnumTexts.h>
#include <ovVeldris/effects/EffectType.h>

namespace ovVeldris {

namespace {

constexpr EnumText<EFFECT_TYPE> TYPE_TEXTS[] = {
    {EFFECT_TYPE::ATMOSPHERE, "ATMOSPHERE"},
    {EFFECT_TYPE::FILM_GRAIN, "FILM_GRAIN"},
    {EFFECT_TYPE::FXAA, "FXAA"},
    {EFFECT_TYPE::IMAGE_ENVIRONMENT, "IMAGE_ENVIRONMENT"},
    {EFFECT_TYPE::SSAO, "SSAO"},
    {EFFECT_TYPE::TEXTURE_COPY, "TEXTURE_COPY"},
    {EFFECT_TYPE::TONE_MAPPING, "TONE_MAPPING"},
};

} // namespace

ovMemory::StringView EffectTypeUtils::enumToString(EFFECT_TYPE type) {
    return textOf(TYPE_TEXTS, type, "UNKNOWN");
}

EFFECT_TYPE EffectTypeUtils::stringToEnum(ovMemory::StringView text) {
    return valueOf(TYPE_TEXTS, text, EFFECT_TYPE::UNKNOWN);
}

} // namespace ovVeldris
