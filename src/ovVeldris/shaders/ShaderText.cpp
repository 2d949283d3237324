#include <ovVeldris/shaders/ShaderText.h>

#include <charconv>
#include <iterator>
#include <limits>

namespace ovVeldris {

ovMemory::String assembleShaderText(std::initializer_list<ShaderPiece> pieces) {
    ovMemory::String text;
    for (const ShaderPiece& piece : pieces) {
        text.append("#line 1 \"").append(piece.file).append("\"\n").append(piece.text);
        // The next #line must begin a line.
        if (!text.ends_with('\n'))
            text += '\n';
    }
    return text;
}

ovMemory::String toSixDecimals(double number) {
    constexpr int DECIMALS = 6;
    char digits[std::numeric_limits<double>::max_exponent10 + DECIMALS + 4];
    return {digits, std::to_chars(digits, std::end(digits), number, std::chars_format::fixed, DECIMALS).ptr};
}

} // namespace ovVeldris
