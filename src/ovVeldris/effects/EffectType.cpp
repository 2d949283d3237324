#include <array>
#include <ovVeldris/effects/EffectType.h>

namespace ovVeldris {

namespace {

constexpr ovMemory::StringView UNKNOWN_TEXT = "UNKNOWN";

struct TypeText {
    EFFECT_TYPE type;
    ovMemory::StringView text;
};

constexpr std::array TYPE_TEXTS = {
    TypeText{EFFECT_TYPE::ATMOSPHERE, "ATMOSPHERE"},
    TypeText{EFFECT_TYPE::FILM_GRAIN, "FILM_GRAIN"},
    TypeText{EFFECT_TYPE::FXAA, "FXAA"},
    TypeText{EFFECT_TYPE::IMAGE_ENVIRONMENT, "IMAGE_ENVIRONMENT"},
    TypeText{EFFECT_TYPE::SSAO, "SSAO"},
    TypeText{EFFECT_TYPE::TEXTURE_COPY, "TEXTURE_COPY"},
    TypeText{EFFECT_TYPE::TONE_MAPPING, "TONE_MAPPING"},
};

} // namespace

ovMemory::StringView EffectTypeUtils::enumToString(EFFECT_TYPE type) {
    for (const TypeText& row : TYPE_TEXTS)
        if (row.type == type)
            return row.text;
    return UNKNOWN_TEXT;
}

EFFECT_TYPE EffectTypeUtils::stringToEnum(ovMemory::StringView text) {
    for (const TypeText& row : TYPE_TEXTS)
        if (row.text == text)
            return row.type;
    return EFFECT_TYPE::UNKNOWN;
}

} // namespace ovVeldris
