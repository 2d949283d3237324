// Numbers as text for the conversions of the maths types.
#pragma once

#include <ovMemory/Memory.h>

namespace ovMaths {

/// Appends a number with six decimals, as std::to_string does in the "C" locale; a host that changes its
/// locale must not change files and scripts, so this one does not look at it.
void appendNumber(ovMemory::String& text, float value);

/// Appends a number with the fewest digits that read back as the same float, in the "C" locale.
void appendExactNumber(ovMemory::String& text, float value);

/// Appends "name(x, y, z, w)".
void appendFour(ovMemory::String& text, ovMemory::StringView name, const float (&values)[4]);

} // namespace ovMaths
