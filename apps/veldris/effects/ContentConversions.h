// The conversions of colour between the effects of a chain, with advice for the command line.
#pragma once

#include <ovVeldris/effects/ContentConversions.h>

namespace veldris {

using ovVeldris::ContentConversion;
using ovVeldris::EffectContent;
using ovVeldris::PICTURE_CONTENT;

/// Finds the conversions that a chain needs (ovVeldris::planConversions()).
/// @param target what the end wants; nothing: anything but scene light stays as it is
/// @return false with one line in error that says which two neighbours do not fit and what to do
bool planConversions(PICTURE_CONTENT source, const ovMemory::Buffer<EffectContent>& effects,
                     std::optional<PICTURE_CONTENT> target, ovMemory::StringView targetName,
                     ovMemory::Buffer<ContentConversion>& conversions, PICTURE_CONTENT& result,
                     ovMemory::String& error);

} // namespace veldris
