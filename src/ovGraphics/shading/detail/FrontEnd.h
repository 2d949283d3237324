// The front ends: from a stage's full text to SPIR-V.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/shading/CompiledProgram.h>
#include <ovMemory/Result.h>

namespace ovGraphics::shading::detail {

/// What a front end makes of one stage. The error is the first message of the compiler,
/// "<file>:<line>: <words>", or the words alone when the compiler names no place. The warning has the
/// compiler's warnings in the same form, one a line.
struct FrontEndResult : ovMemory::Result {
    ovMemory::Buffer<std::uint32_t> spirv; ///< empty on failure
};

/// Compiles the full text of one stage. Safe to call from several threads.
OV_API FrontEndResult compileToSpirv(SHADER_LANGUAGE language, STAGE stage, const ovMemory::String& fullText);

/// Name and version of the front ends.
OV_API ovMemory::String getFrontEndVersion();

} // namespace ovGraphics::shading::detail
