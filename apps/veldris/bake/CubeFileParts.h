// What the formats of files that hold a cube share: 32-bit little-endian words and texels of four halves or
// floats.
#pragma once

#include <cstdint>
#include <veldris/bake/CubeMap.h>

namespace veldris {

/// The cube as the header of a file describes it.
struct CubeFileHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t mipCount = 0;
    ovImages::COMPONENT_TYPE type = ovImages::COMPONENT_TYPE::HALF;
};

/// The word at a place counted in words, which the bytes must have.
std::uint32_t readWord(ovMemory::BufferView<const unsigned char> bytes, std::size_t word);
void appendWord(ovMemory::Buffer<unsigned char>& bytes, std::uint32_t value);

/// Bytes of one face of a mip, whatever the numbers.
std::uint64_t cubeFaceSize(const CubeFileHeader& header, unsigned int mip);
/// Bytes of all texels.
std::uint64_t cubeSize(const CubeFileHeader& header);

/// Whether there can be such a cube: 1 to 16384 texels a side, and no mip below one of 1 x 1.
/// @return false with one line in error
bool checkCubeHeader(const CubeFileHeader& header, ovMemory::String& error);

/// Makes the mips of a checked header, all zero. @return false with one line in error when memory does not
/// suffice
bool allocateCube(const CubeFileHeader& header, CubeMap& cube, ovMemory::String& error);

/// The header of a cube that files can hold: four channels of one type, half or float, and mips that halve in
/// size, rounded down. @return false for any other
bool cubeHeaderOf(const CubeMap& cube, CubeFileHeader& header);

} // namespace veldris
