#include <ovVeldris/materials/MaterialTypeUtils.h>

#include <ovVeldris/core/EnumTexts.h>

namespace ovVeldris {

namespace {

constexpr EnumText<MATERIAL_TYPE> TYPE_TEXTS[] = {{MATERIAL_TYPE::PBS, "PBS"}};

} // namespace

ovMemory::StringView MaterialTypeUtils::enumToString(MATERIAL_TYPE type) {
    return textOf(TYPE_TEXTS, type, "UNKNOWN");
}

MATERIAL_TYPE MaterialTypeUtils::stringToEnum(ovMemory::StringView text) {
    return valueOf(TYPE_TEXTS, text, MATERIAL_TYPE::UNKNOWN);
}

} // namespace ovVeldris
