// Cubes with all their mips in one KTX2 file.
#pragma once

#include <veldris/bake/CubeMap.h>

namespace veldris {

/// Reads a KTX file (version 2) of one whole cube of four half floats or floats a texel, without
/// supercompression. Everything must lie where the format puts it, and the file end after the largest mip.
/// @return false with one line in error, without the file's name
bool decodeKtx(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube, ovMemory::String& error);

/// A KTX file (version 2). @param cube as encodeDds() takes it
/// @return no bytes when it is another
ovMemory::Buffer<unsigned char> encodeKtx(const CubeMap& cube);

} // namespace veldris
