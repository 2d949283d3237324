// The kinds of effects and their names in declarations, projects and scripts.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// The kinds of single-pass effects. The values are written into files and never change.
enum class EFFECT_TYPE : unsigned int {
    UNKNOWN = 0,
    ATMOSPHERE = 1,
    FILM_GRAIN = 2,
    FXAA = 3,
    IMAGE_ENVIRONMENT = 4,
    SSAO = 5,
    TEXTURE_COPY = 6,
    TONE_MAPPING = 7
};

inline constexpr ovMemory::EnumEntry<EFFECT_TYPE> EFFECT_TYPE_ENTRIES[] = {
    {EFFECT_TYPE::UNKNOWN, "UNKNOWN"},
    {EFFECT_TYPE::ATMOSPHERE, "ATMOSPHERE"},
    {EFFECT_TYPE::FILM_GRAIN, "FILM_GRAIN"},
    {EFFECT_TYPE::FXAA, "FXAA"},
    {EFFECT_TYPE::IMAGE_ENVIRONMENT, "IMAGE_ENVIRONMENT"},
    {EFFECT_TYPE::SSAO, "SSAO"},
    {EFFECT_TYPE::TEXTURE_COPY, "TEXTURE_COPY"},
    {EFFECT_TYPE::TONE_MAPPING, "TONE_MAPPING"},
};
constexpr ovMemory::EnumTable<EFFECT_TYPE> enumTable(EFFECT_TYPE) {
    return {"EFFECT_TYPE", EFFECT_TYPE_ENTRIES};
}

/// EFFECT_TYPE to and from text. The text of a value is its enumerator's name.
class OV_API EffectTypeUtils {
public:
    /// "ATMOSPHERE" to "TONE_MAPPING"; "UNKNOWN" for every value outside the seven kinds.
    static ovMemory::StringView enumToString(EFFECT_TYPE type);
    /// The kind of exactly this text (case matters, nothing is trimmed); UNKNOWN for any other text.
    static EFFECT_TYPE stringToEnum(ovMemory::StringView text);
};

} // namespace ovVeldris
