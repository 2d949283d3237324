#include <ovVeldris/shaders/ShaderText.h>

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

} // namespace ovVeldris
