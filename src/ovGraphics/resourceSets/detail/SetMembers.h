// The settings of resources as members of their entries in a set.
#pragma once

#include <functional>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovExport {
class Node;
}

namespace ovGraphics {
class Sampler;
class Texture;
} // namespace ovGraphics

namespace ovGraphics::detail {

/// One setting of a T.
template <typename T>
struct SetMember {
    ovMemory::StringView name;
    std::function<void(const T&, ovExport::Node&)> write;
    /// @return an empty text, or what was expected instead of the node: "a whole number from 0 to 31"
    std::function<ovMemory::String(T&, const ovExport::Node&)> read;
    bool isOfContent = false; ///< comes with the file of a texture
};

OV_API ovMemory::BufferView<const SetMember<Texture>> textureMembers();
OV_API ovMemory::BufferView<const SetMember<Sampler>> samplerMembers();

} // namespace ovGraphics::detail
