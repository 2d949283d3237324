// The program's own description, read from its parser: whatever is written about the program comes from here.
#pragma once

#include <ovMemory/Memory.h>

namespace CLI {
class App;
}

namespace veldris {

struct OptionDescription {
    ovMemory::Buffer<ovMemory::String> longNames; ///< with dashes; none for what stands by its place
    ovMemory::String shortName;                   ///< with its dash; may be empty
    ovMemory::String place;                       ///< name of what stands by its place, such as MODEL
    ovMemory::String help;
    bool takesValue = false;
    bool isRequired = false;
    ovMemory::Buffer<ovMemory::String> choices; ///< all the values that there are; empty: any
    ovMemory::String defaultValue;
};

struct CommandDescription {
    ovMemory::String path; ///< "veldris bake prefilter"
    ovMemory::String help;
    ovMemory::String footer;
    ovMemory::Buffer<OptionDescription> options;
    ovMemory::Buffer<CommandDescription> subcommands;
};

/// The program and all that is below it.
CommandDescription describe(const CLI::App& program);

} // namespace veldris
