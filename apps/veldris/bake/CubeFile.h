// Cubes in one file, of whatever format.
#pragma once

#include <veldris/bake/CubeMap.h>

namespace veldris {

/// A format that holds a cube with all its mips.
struct CubeFileFormat {
    ovMemory::StringView name; ///< "dds" or "ktx2", also the extension without its dot
    bool (*decode)(ovMemory::BufferView<const unsigned char> bytes, CubeMap& cube, ovMemory::String& error);
    ovMemory::Buffer<unsigned char> (*encode)(const CubeMap& cube);
};

/// The format of a path's extension, in any case of letters; null when it is of none.
const CubeFileFormat* findCubeFormat(ovMemory::StringView path);

/// Reads a cube with all mips that the file has. @return false with one line in error
bool readCubeFile(const ovMemory::String& path, CubeMap& cube, ovMemory::String& error);

/// Writes a file as a whole or not at all. @param cube of four channels of half floats or floats
/// @return false with one line in error
bool writeCubeFile(const ovMemory::String& path, const CubeMap& cube, ovMemory::String& error);

} // namespace veldris
