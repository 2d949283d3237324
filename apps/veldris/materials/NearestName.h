// What somebody may have meant by a name that there is not.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// The known name that a name can be told from by the fewest edits (a character put in, taken out or
/// replaced): three at most and no more than half of its characters, unless one of the two contains the other
/// and is of four characters or more. Of equally near ones the first.
/// @return empty when no name is near
ovMemory::StringView findNearestName(ovMemory::StringView name,
                                     const ovMemory::Buffer<ovMemory::StringView>& known);

} // namespace veldris
