// A model of the program's own making, for first steps.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// A chess pawn of glazed ceramic and brass, 1.16 m high, as a binary glTF file: turned shapes in the
/// materials "ceramic", which has a picture, and "brass". The same bytes on every run.
ovMemory::Buffer<unsigned char> makeSampleModel();

} // namespace veldris
