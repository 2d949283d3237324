// Bytes behind an address.
#pragma once

#include <optional>
#include <ovCommon/Api.h>
#include <ovGraphics/gltf/detail/GltfReport.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// What an address of a file holds: the data of a data URI, or a file in or below a folder. The bytes are
/// charged to the report.
/// @param folder that outside files lie in; empty: there are none
/// @param error set to the reason of a failure, without the name of the object
/// @return nothing on failure
OV_API std::optional<ovMemory::Buffer<unsigned char>> loadGltfUri(ovMemory::StringView uri,
                                                                  ovMemory::StringView folder,
                                                                  GltfReport& report,
                                                                  ovMemory::String& error);

} // namespace ovGraphics::detail
