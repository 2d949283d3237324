// The text of a program: two stages and their defines.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/shading/CompiledProgram.h>

namespace ovGraphics {

/// Holds the author's text of both stages and the defines that select its options. Copies what it is given.
class OV_API ProgramSourcesHolder {
public:
    void setVertexMemory(ovMemory::StringView text) { _vertex.text = text; }
    void setPixelMemory(ovMemory::StringView text) { _pixel.text = text; }

    /// Puts `#define name value` before the stage's text, after those added before. An empty value is a plain
    /// switch.
    void addDefineMacroVertex(ovMemory::StringView name, ovMemory::StringView value) {
        _add(_vertex, name, value);
    }
    void addDefineMacroPixel(ovMemory::StringView name, ovMemory::StringView value) {
        _add(_pixel, name, value);
    }

    const shading::StageText& getVertex() const { return _vertex; }
    const shading::StageText& getPixel() const { return _pixel; }

private:
    static void _add(shading::StageText& stage, ovMemory::StringView name, ovMemory::StringView value) {
        stage.defines.push_back({ovMemory::String(name), ovMemory::String(value)});
    }

    shading::StageText _vertex;
    shading::StageText _pixel;
};

} // namespace ovGraphics
