// The conversions of colour between the effects of a chain.
#pragma once

#include <ovVeldris/core/PictureContent.h>

namespace veldris {

using ovVeldris::PICTURE_CONTENT;

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

/// Finds the conversions that a chain needs. Display light and its encoding convert into each other without
/// loss. Scene light is refused in both directions and never guessed: a display picture does not tell what
/// light the scene had, and how to show scene light is a choice that only a tone mapping makes.
/// @param target what the end wants; nothing: anything but scene light stays as it is
/// @return false with one line in error that says which two neighbours do not fit and what to do
bool planConversions(PICTURE_CONTENT source, const ovMemory::Buffer<EffectContent>& effects,
                     std::optional<PICTURE_CONTENT> target, ovMemory::StringView targetName,
                     ovMemory::Buffer<ContentConversion>& conversions, PICTURE_CONTENT& result,
                     ovMemory::String& error);

} // namespace veldris
