// Cubes with all their mips in one file: DDS and KTX2.
#pragma once

#include <ovImages/cubes/CubeMap.h>
#include <ovMemory/Result.h>

namespace ovImages {

/// A cube, or why there is none.
struct CubeReadResult : ovMemory::Result {
    CubeMap cube; ///< without mips on failure

    explicit operator bool() const { return !cube.mips.empty(); }
};

/// The format that a path's extension names, in any case of letters: "dds", "ktx2", or "" for any other.
OV_API ovMemory::StringView cubeFormatOf(ovMemory::StringView path);

/// The format that bytes begin as: "dds", "ktx2", or "" for any other. Says nothing about the rest.
OV_API ovMemory::StringView cubeFormatOfBytes(ovMemory::BufferView<const unsigned char> bytes);

/// Bytes from the beginning of a file that cubeFormatOfBytes() looks at.
inline constexpr std::size_t CUBE_SIGNATURE_BYTES = 12;

/// Decodes a DDS or KTX2 file by its content. One whole cube of 1 to 16384 texels a side, with as many mips
/// as the file has: 8 bits, half floats or floats of one to four channels.
///
/// Of DDS: DXGI formats of R, RG, RGB and RGBA, and of BGRA and BGRX of 8 bits; the older codes and masks of
/// the same. Of KTX2: Vulkan's formats of the same without supercompression. Red alone is grey; red and green
/// have a blue of 0. Formats that say so are SRGB, and so are the older ones of 8 bits, whose writers mean
/// pictures; all others are LINEAR. The length of the bytes must be what the header says. Whatever the bytes
/// are, nothing throws, and no more is allocated than they hold texels for.
OV_API CubeReadResult decodeCube(ovMemory::BufferView<const unsigned char> bytes);

/// Reads and decodes a file, whatever its name. The error names the path.
OV_API CubeReadResult readCubeFile(ovMemory::StringView path);

/// A file of a format in memory. @param format "dds" or "ktx2"
/// @param cube whose mips have four channels of one type, half or float, and halve in size, rounded down
/// @return no bytes for any other
OV_API ovMemory::Buffer<unsigned char> encodeCube(ovMemory::StringView format, const CubeMap& cube);

/// Writes the format of the path's extension, whole or not at all (ovResources::writeFileAtomically).
/// @param cube as encodeCube() takes it
OV_API ovMemory::Result writeCubeFile(ovMemory::StringView path, const CubeMap& cube);

} // namespace ovImages
