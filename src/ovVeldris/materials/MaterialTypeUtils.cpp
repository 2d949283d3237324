#include <ovVeldris/materials/MaterialTypeUtils.h>

namespace ovVeldris {

ovMemory::StringView MaterialTypeUtils::enumToString(MATERIAL_TYPE type) {
    return ovMemory::enumToText(type, "UNKNOWN");
}

MATERIAL_TYPE MaterialTypeUtils::stringToEnum(ovMemory::StringView text) {
    return ovMemory::enumFromText<MATERIAL_TYPE>(text).value_or(MATERIAL_TYPE::UNKNOWN);
}

} // namespace ovVeldris
