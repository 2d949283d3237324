// The conversions of colour between effects that are drawn one after another.
#pragma once

#include <ovVeldris/core/PictureContent.h>

namespace ovVeldris {

/// What an effect takes and gives. Nothing: whatever it is given, and the same again.
struct EffectContent {
    ovMemory::String effect; ///< name shown in messages
    std::optional<PICTURE_CONTENT> takes;
    std::optional<PICTURE_CONTENT> gives;
};

/// A conversion before an effect (or, with the number of effects, before the end).
struct ContentConversion {
    std::size_t beforeEffect = 0;
    PICTURE_CONTENT from;
    PICTURE_CONTENT to;
    bool operator==(const ContentConversion&) const = default;
};

/// Two neighbours that do not fit.
struct ContentMismatch {
    ovMemory::String text; ///< names both, without a full stop
    PICTURE_CONTENT from;  ///< what there is
    bool isAtEnd = false;  ///< the second one is the end
};

/// Finds the conversions that effects need. Display light and its encoding convert into each other without
/// loss. Scene light is refused in both directions and never guessed: a display picture does not tell what
/// light the scene had, and how to show scene light is a choice that only a tone mapping makes.
/// @param target what the end wants; nothing: anything @param targetName of the end, for messages
/// @param content gets what is there at the end
/// @return the first mismatch, or nothing
OV_API std::optional<ContentMismatch>
planConversions(PICTURE_CONTENT source, ovMemory::BufferView<const EffectContent> effects,
                std::optional<PICTURE_CONTENT> target, ovMemory::StringView targetName,
                ovMemory::Buffer<ContentConversion>& conversions, PICTURE_CONTENT& content);

} // namespace ovVeldris
