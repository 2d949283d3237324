// A first look at the headers of an EXR file. Internal to the library.
#pragma once

#include <ovMemory/Memory.h>

namespace ovImages::detail {

/// Walks the attributes of all headers from the version field on, as "OpenEXR File Layout" describes them.
/// Empty, or what is wrong when one is longer than the file or has not the size that its type and content
/// tell. The library itself believes the lengths, and fills that much memory before it notices that the file
/// ends.
ovMemory::String checkExrAttributes(ovMemory::BufferView<const unsigned char> bytes);

} // namespace ovImages::detail
