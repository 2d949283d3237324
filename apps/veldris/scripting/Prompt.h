// Scripts typed line by line.
#pragma once

#include <ovMemory/Memory.h>

namespace ovScripts {
class Environment;
}

namespace veldris {

class Console;

/// Reads lines from standard input and runs them until it ends. On a terminal lines can be edited, earlier
/// ones come back, and the tabulator completes names; in a pipe there is no prompt. Ctrl-C ends the line that
/// runs, with its threads, where the options of the environment let it be interrupted.
///
/// A line may be an expression, whose value is printed, or statements; one that is not finished goes on in
/// the next. An error is told and the next line is read.
/// @return the exit status: of a pipe that of a failure when a line failed
int runPrompt(Console& console, ovScripts::Environment& environment);

} // namespace veldris
