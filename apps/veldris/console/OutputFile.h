// Where a command writes to: a file, or standard output in a format.
#pragma once

#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace veldris {

class Console;

/// Whether an output as the user gives it is standard output: a format with ":-", as in "png:-".
bool isStandardOutput(ovMemory::StringView output);

/// A name whose extension is the format of an output: the output itself, "standard output.png" for "png:-".
ovMemory::String nameWithFormat(ovMemory::StringView output);

/// Prints the path of an output that was written; of standard output there is nothing to print.
void printPath(Console& console, ovMemory::StringView output);

/// Looks before long work whether an output can be written (ovResources::checkWritable).
ovMemory::Result checkOutput(ovMemory::StringView output);

/// Writes an output: a file as ovResources::writeFile() does, or everything to standard output.
ovMemory::Result writeOutput(ovMemory::StringView output, ovMemory::BufferView<const char> bytes);
ovMemory::Result writeOutput(ovMemory::StringView output, ovMemory::BufferView<const unsigned char> bytes);

} // namespace veldris
