// Lines and columns for people, from byte positions.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovExport {

/// A place in a text as editors count it.
struct TextPosition {
    std::uint32_t line = 1;   ///< from 1; a line feed ends a line ("\r\n" therefore too)
    std::uint32_t column = 1; ///< from 1, in characters of UTF-8; a byte order mark at the start is none
};

/// The place of a byte of a text. Reads the text up to there, once.
/// @param index in bytes, such as Node::getSourceIndex(); beyond the end it counts as the end
OV_API TextPosition findTextPosition(ovMemory::StringView text, std::size_t index);

} // namespace ovExport
