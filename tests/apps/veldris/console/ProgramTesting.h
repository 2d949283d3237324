// Runs the program as a shell does, for what only processes show: pipes, and streams that are full.
#pragma once

#include <cstdlib>
#include <ovMemory/Memory.h>
#include <sys/wait.h>

/// Runs a line of shell in which $V is the program. @return the exit status of its last command, -1 when it
/// did not end by itself
inline int runShell(const ovMemory::String& line) {
    const int status = std::system(("V='" OV_PROGRAM "'; " + line).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
