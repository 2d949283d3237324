// The front ends: from a stage's full text to SPIR-V.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/shading/CompiledProgram.h>

namespace ovGraphics::shading::detail {

/// What a front end makes of one stage.
struct FrontEndResult {
    ovMemory::Buffer<std::uint32_t> spirv; ///< empty on failure
    /// On failure the first message of the compiler, "<file>:<line>: <words>", without the place when it
    /// names none.
    ovMemory::String error;
    /// The compiler's warnings in the same form, one a line.
    ovMemory::String warnings;
};

/// Compiles the full text of one stage. Safe to call from several threads.
OV_API FrontEndResult compileToSpirv(SHADER_LANGUAGE language, STAGE stage, const ovMemory::String& fullText);

/// Name and version of the front ends.
OV_API ovMemory::String getFrontEndVersion();

} // namespace ovGraphics::shading::detail
