// The kinds of complex effects and their texts.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Kind of a complex effect. The numbers are part of the interface of scripts and files.
enum class COMPLEX_EFFECT_TYPE : uint32_t { UNKNOWN = 0, BLUR = 1, DOF = 2 };

inline constexpr ovMemory::EnumEntry<COMPLEX_EFFECT_TYPE> COMPLEX_EFFECT_TYPE_ENTRIES[] = {
    {COMPLEX_EFFECT_TYPE::UNKNOWN, "UNKNOWN"},
    {COMPLEX_EFFECT_TYPE::BLUR, "BLUR"},
    {COMPLEX_EFFECT_TYPE::DOF, "DOF"},
};
constexpr ovMemory::EnumTable<COMPLEX_EFFECT_TYPE> enumTable(COMPLEX_EFFECT_TYPE) {
    return {"COMPLEX_EFFECT_TYPE", COMPLEX_EFFECT_TYPE_ENTRIES};
}

/// Text of COMPLEX_EFFECT_TYPE: the names of its values.
class OV_API ComplexEffectTypeUtils {
public:
    /// "UNKNOWN" for anything but the named kinds.
    static ovMemory::StringView enumToString(COMPLEX_EFFECT_TYPE type);
    /// The kind of an exact, case-sensitive text; UNKNOWN for any other. Safe to call from several threads.
    static COMPLEX_EFFECT_TYPE stringToEnum(ovMemory::StringView text);
};

} // namespace ovVeldris
