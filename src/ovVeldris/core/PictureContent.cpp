#include <ovVeldris/core/PictureContent.h>

#include <ovVeldris/core/settings/Setting.h>

namespace ovVeldris {

ovMemory::String toText(PICTURE_CONTENT content) {
    return toSettingText(ovMemory::enumToText(content));
}

std::optional<PICTURE_CONTENT> contentFromText(ovMemory::StringView text) {
    for (const auto& entry : ovMemory::enumTableOf<PICTURE_CONTENT>())
        if (toSettingText(entry.text) == text)
            return entry.value;
    return std::nullopt;
}

} // namespace ovVeldris
