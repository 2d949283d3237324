// The kinds of materials and their texts.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Kind of a material. The numbers are part of the interface of scripts and files.
enum class MATERIAL_TYPE : uint32_t { UNKNOWN = 0, PBS = 1 };

inline constexpr ovMemory::EnumEntry<MATERIAL_TYPE> MATERIAL_TYPE_ENTRIES[] = {
    {MATERIAL_TYPE::UNKNOWN, "UNKNOWN"},
    {MATERIAL_TYPE::PBS, "PBS"},
};
constexpr ovMemory::EnumTable<MATERIAL_TYPE> enumTable(MATERIAL_TYPE) {
    return {"MATERIAL_TYPE", MATERIAL_TYPE_ENTRIES};
}

/// Text of MATERIAL_TYPE: the names of its values.
class OV_API MaterialTypeUtils {
public:
    /// "UNKNOWN" for anything but the named kinds.
    static ovMemory::StringView enumToString(MATERIAL_TYPE type);
    /// The kind of an exact, case-sensitive text; UNKNOWN for any other.
    static MATERIAL_TYPE stringToEnum(ovMemory::StringView text);
};

} // namespace ovVeldris
