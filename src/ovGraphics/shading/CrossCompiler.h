// From one dual-dialect text to the device's language.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/shading/CompiledProgram.h>
#include <ovMemory/Result.h>

namespace ovGraphics::shading {

/// Outcome of a compilation.
///
/// The error is one message: "Could not compile the <vertex|pixel> stage of program '<name>': <file or
/// 'source'>:<line>: <the compiler's words>", the line counted in the author's text; the place is
/// "<file or 'source'>:<line>". Messages about the stage as a whole (a missing input, two buffers of one
/// slot) name no place. The warning has the compilers' warnings, one a line.
struct CompileResult : ovMemory::Result {
    ovMemory::UniquePtr<CompiledProgram> program; ///< null on failure
    explicit operator bool() const { return program != nullptr; }
};

/// Compiles both stages of a program to SPIR-V with the front end of its language, joins them by name,
/// reflects their interface and translates them to GLSL 4.50. Deterministic. Safe to call from several
/// threads.
OV_API CompileResult compile(const ProgramText& text);

/// The text of a stage exactly as the front end sees it: the language's version line and macros (when the
/// program asks for cross-compiler defines), the defines, then the author's text.
OV_API ovMemory::String getFullText(const ProgramText& text, STAGE stage);

/// The names and versions of the front ends and the translator, for reports and for keys of caches.
OV_API ovMemory::String getCompilerVersions();

} // namespace ovGraphics::shading
