// Cubes with all their mips in one KTX2 file.
#pragma once

#include <ovImages/cubes/CubeMap.h>

namespace ovImages::detail {

/// Whether bytes begin as a KTX file.
OV_API bool isKtx(ovMemory::BufferView<const unsigned char> bytes);

/// Reads a KTX file (version 2) of one whole cube, as CubeFile.h tells. @return false with one line in error,
/// without the file's name
OV_API bool decodeKtx(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube,
                      ovMemory::String& error);

/// A KTX file (version 2). @return no bytes for a cube that is not written
OV_API ovMemory::Buffer<unsigned char> encodeKtx(const CubeMap& cube);

} // namespace ovImages::detail
