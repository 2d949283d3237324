// What the numbers of a picture mean.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// The meaning of a picture's colour numbers. Alpha is plain coverage in all of them.
enum class PICTURE_CONTENT {
    SCENE_LINEAR,   ///< proportional to the light of the scene, 0 to any height
    DISPLAY_LINEAR, ///< proportional to the light of the screen, 0 to 1
    SRGB_ENCODED    ///< display light under the sRGB transfer function, 0 to 1
};

inline constexpr ovMemory::EnumEntry<PICTURE_CONTENT> PICTURE_CONTENT_ENTRIES[] = {
    {PICTURE_CONTENT::SCENE_LINEAR, "SCENE_LINEAR"},
    {PICTURE_CONTENT::DISPLAY_LINEAR, "DISPLAY_LINEAR"},
    {PICTURE_CONTENT::SRGB_ENCODED, "SRGB_ENCODED"},
};
constexpr ovMemory::EnumTable<PICTURE_CONTENT> enumTable(PICTURE_CONTENT) {
    return {"PICTURE_CONTENT", PICTURE_CONTENT_ENTRIES};
}

/// "scene-linear", "display-linear" or "srgb-encoded".
OV_API ovMemory::String toText(PICTURE_CONTENT content);
/// The content of that text, or nothing.
OV_API std::optional<PICTURE_CONTENT> contentFromText(ovMemory::StringView text);

} // namespace ovVeldris
