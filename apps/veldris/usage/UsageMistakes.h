// What is wrong with a command line, in the user's words.
#pragma once

#include <ovMemory/Memory.h>

namespace CLI {
class App;
}

namespace veldris {

/// A line for arguments that the program's parser refused. The first option or subcommand that does not exist
/// is named with the nearest one that does, before any complaint about what is missing: a mistyped name is
/// the likelier reason. Otherwise the parser's own words stand behind the subcommand.
/// @param arguments without the program's name @param parserMessage what the parser says
ovMemory::String usageMistake(const CLI::App& program, ovMemory::BufferView<const char* const> arguments,
                              ovMemory::StringView parserMessage);

/// Finds a subcommand by the names that lead to it, as `bake`, `prefilter`.
/// @return null with one line in error when there is none
CLI::App* findSubcommand(CLI::App& program, const ovMemory::Buffer<ovMemory::String>& names,
                         ovMemory::String& error);

} // namespace veldris
