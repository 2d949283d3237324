// Cubes with all their mips in one DDS file.
#pragma once

#include <ovImages/cubes/CubeMap.h>

namespace ovImages::detail {

/// Whether bytes begin as a DDS file.
OV_API bool isDds(ovMemory::BufferView<const unsigned char> bytes);

/// Reads a DDS file of one whole cube, as CubeFile.h tells. @return false with one line in error, without the
/// file's name
OV_API bool decodeDds(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube,
                      ovMemory::String& error);

/// A DDS file with the extended header. @return no bytes for a cube that is not written
OV_API ovMemory::Buffer<unsigned char> encodeDds(const CubeMap& cube);

} // namespace ovImages::detail
