// Completion of the program's words in shells.
#pragma once

#include <veldris/usage/ProgramDescription.h>

namespace veldris {

/// A script to be sourced by bash.
ovMemory::String bashCompletion(const CommandDescription& program);

/// A script for zsh: the file `_veldris` of a folder of its function path.
ovMemory::String zshCompletion(const CommandDescription& program);

} // namespace veldris
