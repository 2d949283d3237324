// The program's manual page.
#pragma once

#include <veldris/usage/ProgramDescription.h>

namespace veldris {

/// The page of section 1 in the language of man(7). @param version of the program
ovMemory::String manualPage(const CommandDescription& program, ovMemory::StringView version);

} // namespace veldris
