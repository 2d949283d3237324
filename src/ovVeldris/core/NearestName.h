// What somebody may have meant by a name that does not exist.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// The known name that the fewest edits make of a name (a character put in, taken out or replaced). At most
/// three edits count, and at most half as many as the name has characters, unless one name contains the other
/// and the shorter has four characters or more. Of equally near names the first is taken.
/// @return empty when no name is near
OV_API ovMemory::StringView findNearestName(ovMemory::StringView name,
                                            const ovMemory::Buffer<ovMemory::StringView>& known);

/// The same as a sentence to end a message with: " Did you mean 'operator'?"; empty when no name is near.
OV_API ovMemory::String nearestNameHint(ovMemory::StringView name,
                                        const ovMemory::Buffer<ovMemory::StringView>& known);

} // namespace ovVeldris
