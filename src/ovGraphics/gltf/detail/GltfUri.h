// Addresses of buffers and images.
#pragma once

#include <optional>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// Whether an address holds its data itself.
OV_API bool isDataUri(ovMemory::StringView uri);

/// The data of "data:[type][;base64],...": Base64 (RFC 4648, padding may be missing) or percent-encoded
/// bytes.
/// @return nothing for anything else, and for a character that is not of Base64
OV_API std::optional<ovMemory::Buffer<unsigned char>> decodeDataUri(ovMemory::StringView uri);

/// The path, relative to the folder of the file, that an address means: percent-encoding undone (a '%' that
/// begins none stays), '\' as '/'.
/// @return nothing for an address that could leave the folder: empty, with a scheme, from the root, with a
///         part that is "..", or with a zero byte
OV_API std::optional<ovMemory::String> decodeRelativeUri(ovMemory::StringView uri);

} // namespace ovGraphics::detail
