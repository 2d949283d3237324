// Shader texts put together from pieces.
#pragma once

#include <initializer_list>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// A piece of a shader's text and the file that its author wrote it in.
struct ShaderPiece {
    ovMemory::StringView file; ///< name in compile errors, such as "FxaaEffect.pixel.ovsl"
    ovMemory::StringView text;
};

/// One text of all pieces in order. Each is introduced by `#line 1 "<file>"`, so that a compile error names
/// the author's file and line, and ends its last line. An effect assembles its text once, as a static
/// constant.
OV_API ovMemory::String assembleShaderText(std::initializer_list<ShaderPiece> pieces);

/// A number with six decimals ("%f"), in the "C" locale: numbers of programs that hosts know by their text.
/// What is not finite becomes a text that no shader compiles.
OV_API ovMemory::String toSixDecimals(double number);

} // namespace ovVeldris
