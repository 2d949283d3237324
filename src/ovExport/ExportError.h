// Why a text could not be read.
#pragma once

#include <cstdint>
#include <ovMemory/Memory.h>

namespace ovExport {

/// Says what is wrong with a text, and where.
struct ExportError {
    /// What is wrong, in a few words without a place: "Unexpected character". Empty without an error.
    ovMemory::String _errorDesc;
    /// The whole story in one line: line, column, what was expected and found, and the text there (bytes that
    /// are not printable as '?'). Empty without an error.
    ovMemory::String _errorInfo;
    /// Byte of the text at which reading stopped, from 0 up to the text's size (its end). For a text of 4 GiB
    /// or more, which is refused unread, 0.
    std::uint32_t _index = 0;
    /// Whether there is an error at all.
    bool _activated = false;
    /// Line of that byte, from 1; 0 without an error.
    std::uint32_t _line = 0;
};

} // namespace ovExport
