// Cubes with all their mips in one KTX file.
#pragma once

#include <veldris/bake/CubeMap.h>

namespace veldris {

/// Reads a KTX file (version 1, little-endian) of one whole cube of four half floats or floats a texel. The
/// file's length must be what its header says.
/// @return false with one line in error, without the file's name
bool decodeKtx(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube, ovMemory::String& error);

/// A KTX file (version 1) without key-value data. @param cube as encodeDds() takes it
/// @return no bytes when it is another
ovMemory::Buffer<unsigned char> encodeKtx(const CubeMap& cube);

} // namespace veldris
