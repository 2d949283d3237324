// How help looks.
#pragma once

#include <ovMemory/Memory.h>

namespace CLI {
class App;
}

namespace veldris {

/// Breaks the lines of a text between words, so that none is longer than a width where its words allow. What
/// follows stands below the last column of the line: behind the last gap of two spaces or more, or below the
/// line's first word. @param width characters
ovMemory::String wrapText(ovMemory::StringView text, std::size_t width);

/// Characters in a line of help: COLUMNS where it is set, otherwise the terminal's width, otherwise 100.
std::size_t helpWidth();

/// How an app is called: "veldris bake prefilter".
ovMemory::String commandPath(const CLI::App& app);

/// The help of an app, without the newline at its end.
ovMemory::String helpOf(const CLI::App& app);

/// Makes an app and its subcommands show their help in lines of helpWidth().
void wrapHelp(CLI::App& program);

} // namespace veldris
