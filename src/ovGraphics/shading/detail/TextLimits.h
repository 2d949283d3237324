// Refuses texts that would exhaust the compilers instead of being refused by them.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::shading::detail {

/// Longest text of a stage with its defines and macros, in bytes.
constexpr std::size_t MAX_TEXT_BYTES = 256 * 1024;

/// Deepest nesting of brackets of all kinds.
constexpr unsigned int MAX_NESTING = 128;

/// Heaviest statement, macros expanded, in tokens; what opens a scope or branches counts several times.
/// Numbers and the commas between arguments count nothing, so that long tables pass.
constexpr unsigned int MAX_STATEMENT_WEIGHT = 8192;

/// Heaviest text in the same measure.
constexpr unsigned int MAX_TEXT_WEIGHT = 512 * 1024;

/// Largest number between the brackets of an array.
constexpr unsigned int MAX_ARRAY_NUMBER = 65536;

/// The front ends and the translator walk through expressions and statements recursively and expand macros
/// without a limit, so that a small hostile text could overrun the stack or never end. The limits are far
/// above what a program needs and far below what the compilers bear.
/// @return "<file>:<line>: <words>" when the full text of a stage exceeds a limit, empty when it is within
/// them
OV_API ovMemory::String findExceededLimit(ovMemory::StringView fullText);

} // namespace ovGraphics::shading::detail
