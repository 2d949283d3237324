// Cubes with all their mips in one DDS file.
#pragma once

#include <veldris/bake/CubeMap.h>

namespace veldris {

/// Reads a DDS file of one whole cube of four half floats or floats a texel, as this program and most others
/// write it: with the extended header (DXGI_FORMAT_R16G16B16A16_FLOAT, DXGI_FORMAT_R32G32B32A32_FLOAT) or
/// with the older codes of the same formats (113, 116). The file's length must be what its header says.
/// @return false with one line in error, without the file's name
bool decodeDds(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube, ovMemory::String& error);

/// A DDS file with the extended header.
/// @param cube whose mips have four channels of one type, half or float, and halve in size, rounded down
/// @return no bytes when it has not
ovMemory::Buffer<unsigned char> encodeDds(const CubeMap& cube);

} // namespace veldris
