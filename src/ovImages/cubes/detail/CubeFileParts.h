// What the formats of files that hold a cube share: 32-bit little-endian words, and texels of up to four
// equal components.
#pragma once

#include <array>
#include <cstdint>
#include <ovImages/cubes/CubeMap.h>

namespace ovImages::detail {

/// How texels are stored, and what becomes of them.
struct CubeTexels {
    /// In CubeTexels::from: not stored, 0 or 1 everywhere.
    static constexpr unsigned int ZERO = 4;
    static constexpr unsigned int ONE = 5;

    COMPONENT_TYPE type = COMPONENT_TYPE::HALF;
    COLOR_ENCODING encoding = COLOR_ENCODING::LINEAR;
    unsigned int stored = 4;   ///< components of a texel in the file
    unsigned int channels = 4; ///< of the picture
    /// The stored component of each channel of the picture.
    std::array<unsigned int, 4> from = {0, 1, 2, 3};
};

/// Red; red and green; red, green and blue; with alpha: as most formats have them.
constexpr CubeTexels texelsInOrder(COMPONENT_TYPE type, unsigned int stored,
                                   COLOR_ENCODING encoding = COLOR_ENCODING::LINEAR) {
    // Pictures of two channels are grey with alpha, which red and green are not.
    if (stored == 2)
        return {type, encoding, 2, 3, {0, 1, CubeTexels::ZERO, 0}};
    return {type, encoding, stored, stored, {0, 1, 2, 3}};
}

/// Blue, green, red, and alpha if four are stored, of 8 bits. @param opaque what is stored as alpha means
/// nothing
constexpr CubeTexels texelsBlueFirst(unsigned int stored, COLOR_ENCODING encoding, bool opaque = false) {
    return {COMPONENT_TYPE::UINT8, encoding, stored, stored, {2, 1, 0, opaque ? CubeTexels::ONE : 3}};
}

/// The number of a format, and its texels.
struct CubeFormat {
    std::uint32_t code;
    CubeTexels texels;
};

/// Looks a format up. @return false, changing nothing, when it is not in the table
OV_API bool findTexels(ovMemory::BufferView<const CubeFormat> formats, std::uint32_t code,
                       CubeTexels& texels);

/// The cube as the header of a file describes it.
struct CubeFileHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t mipCount = 0;
    CubeTexels texels;
};

/// The word at a place counted in words, which the bytes must have.
OV_API std::uint32_t readWord(ovMemory::BufferView<const unsigned char> bytes, std::size_t word);
OV_API void appendWord(ovMemory::Buffer<unsigned char>& bytes, std::uint32_t value);

/// Bytes of a texel in the file.
OV_API std::uint32_t cubeTexelSize(const CubeTexels& texels);
/// Bytes of one face of a mip in the file, whatever the numbers.
OV_API std::uint64_t cubeFaceSize(const CubeFileHeader& header, unsigned int mip);
/// Bytes of all texels.
OV_API std::uint64_t cubeSize(const CubeFileHeader& header);

/// Whether there can be such a cube: 1 to 16384 texels a side, and no mip below one of 1 x 1.
/// @return false with one line in error
OV_API bool checkCubeHeader(const CubeFileHeader& header, ovMemory::String& error);

/// Makes the mips of a checked header, all zero. @return false with one line in error when memory does not
/// suffice
OV_API bool allocateCube(const CubeFileHeader& header, CubeMap& cube, ovMemory::String& error);

/// Brings texels of a file into a face or a mip of a picture.
/// @param source as many texels as the target has room for
OV_API void readTexels(const unsigned char* source, const CubeTexels& texels,
                       ovMemory::BufferView<unsigned char> target);

/// The header of a cube that is written: four channels of one type, half or float, and mips that halve in
/// size, rounded down. @return false for any other
OV_API bool cubeHeaderOf(const CubeMap& cube, CubeFileHeader& header);

} // namespace ovImages::detail
