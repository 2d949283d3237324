// Splits shader text into tokens, as far as both languages agree on them.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::shading::detail {

enum class TOKEN : unsigned int {
    IDENTIFIER,
    NUMBER,
    TEXT,      ///< a quoted text
    PUNCTUATOR ///< one character, but for "##"
};

struct Token {
    TOKEN kind = TOKEN::PUNCTUATOR;
    ovMemory::StringView text;
    unsigned int line = 1;        ///< physical line, from 1
    bool startsDirective = false; ///< the '#' that opens a directive
    bool startsLine = false;      ///< first of its logical line (lines joined by a backslash are one)
    bool afterSpace = false;      ///< white space or a comment stands before it
};

/// Splits text and drops comments. It cannot fail: bytes that belong to no token become punctuators.
OV_API ovMemory::Buffer<Token> splitIntoTokens(ovMemory::StringView text);

} // namespace ovGraphics::shading::detail
