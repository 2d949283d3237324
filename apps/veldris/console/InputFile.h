// Files that a command reads, of which one may be standard input.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

class Console;

/// A path as the user gives it, as one that can be read: "-" stands for standard input, which is read to its
/// end and kept in memory, as a file that every reader can open.
class InputFile {
public:
    InputFile() = default;
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Makes a path readable; any other than "-" stays as it is. The file goes with this object.
    /// @param path is replaced @param console calls the file "standard input" from now on
    /// @return false with one line in error when standard input is empty or cannot be read
    bool open(ovMemory::String& path, Console& console, ovMemory::String& error);

private:
    int _file = -1;
};

} // namespace veldris
