// Well-formed UTF-8. Internal to the library.
#pragma once

#include <cstddef>

namespace ovExport::detail {

/// Bytes of the character at the start of some text, 1 to 4, or 0 if it is not well-formed (Unicode, table
/// 3-7): stray or missing continuation bytes, longer forms than needed, surrogates, beyond U+10FFFF.
/// @param available bytes of the text, at least 1
inline unsigned int measureUtf8(const char* text, std::size_t available) {
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const auto isContinued = [&byte, available](std::size_t index) {
        return index < available && (byte(index) & 0xc0) == 0x80;
    };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    if (first < 0xc2 || first > 0xf4 || !isContinued(1))
        return 0;
    if (first < 0xe0)
        return 2;
    const unsigned char second = byte(1);
    const bool isTooLong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isBeyond = (first == 0xed && second > 0x9f) || (first == 0xf4 && second > 0x8f);
    if (isTooLong || isBeyond || !isContinued(2))
        return 0;
    if (first < 0xf0)
        return 3;
    return isContinued(3) ? 4 : 0;
}

/// Writes a character as UTF-8. Returns the place behind it.
/// @param code no surrogate, at most 0x10ffff
/// @param out room for 4 bytes
inline char* writeUtf8(unsigned int code, char* out) {
    const auto put = [&out](unsigned int byte) { *out++ = static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
        return out;
    }
    if (code < 0x800) {
        put(0xc0 | code >> 6);
    } else {
        if (code < 0x10000) {
            put(0xe0 | code >> 12);
        } else {
            put(0xf0 | code >> 18);
            put(0x80 | (code >> 12 & 0x3f));
        }
        put(0x80 | (code >> 6 & 0x3f));
    }
    put(0x80 | (code & 0x3f));
    return out;
}

} // namespace ovExport::detail
