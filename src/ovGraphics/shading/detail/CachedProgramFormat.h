// The file format of cached programs.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/shading/ProgramDiskCache.h>

namespace ovGraphics::shading::detail {

/// A whole file: magic, version of the format, length and checksum of what follows, the key's full text, the
/// program. Numbers are little-endian on every machine.
OV_API ovMemory::Buffer<char> packCachedProgram(ovMemory::StringView key, const CachedProgram& program);

/// Reads a whole file. Any bytes are safe to give.
/// @return null when the bytes are not a whole, intact file of this version for exactly this key
OV_API ovMemory::UniquePtr<CachedProgram> unpackCachedProgram(ovMemory::BufferView<const char> bytes,
                                                              ovMemory::StringView key);

/// Reads what follows the header, whose checksum has been compared. Any bytes are safe to give.
OV_API ovMemory::UniquePtr<CachedProgram> unpackCachedContent(ovMemory::BufferView<const char> content,
                                                              ovMemory::StringView key);

/// 64-bit FNV-1a of bytes.
OV_API std::uint64_t hashBytes(ovMemory::BufferView<const char> bytes);

} // namespace ovGraphics::shading::detail
