// What the program says of effects.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// A page of text: every effect with its settings, their ranges, defaults and conditions.
ovMemory::String effectHelp();

} // namespace veldris
