// The two forms of a glTF file.
#pragma once

#include <optional>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// The parts of a file; views of its bytes.
struct GltfContainer {
    ovMemory::StringView json;
    std::optional<ovMemory::BufferView<const unsigned char>> binary; ///< what the first buffer may be
};

/// Whether the bytes begin as a binary file does, of whichever version.
OV_API bool isBinaryGltf(ovMemory::BufferView<const unsigned char> bytes);

/// Takes a file apart: a binary one into its chunks, anything else is taken for text.
/// @param error set on failure: a version other than 2, a length beyond the end, no JSON chunk at the start
/// @return nothing on failure
OV_API std::optional<GltfContainer> openGltfContainer(ovMemory::BufferView<const unsigned char> bytes,
                                                      ovMemory::String& error);

} // namespace ovGraphics::detail
