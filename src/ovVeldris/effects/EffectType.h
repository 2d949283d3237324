// The kinds of effects and their names in declarations, projects and scripts.
#pragma once

#include <ovCommon/Api.h>
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

/// EFFECT_TYPE to and from text. The text of a value is its enumerator's name.
class OV_API EffectTypeUtils {
public:
    /// "ATMOSPHERE" to "TONE_MAPPING"; "UNKNOWN" for every value outside the seven kinds.
    static ovMemory::StringView enumToString(EFFECT_TYPE type);
    /// The kind of exactly this text (case matters, nothing is trimmed); UNKNOWN for any other text.
    static EFFECT_TYPE stringToEnum(ovMemory::StringView text);
};

} // namespace ovVeldris
