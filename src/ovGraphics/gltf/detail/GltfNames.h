// Names that can be looked up.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <ovMemory/NameMap.h>

namespace ovGraphics::detail {

/// Makes the names of one kind of objects unique: files need not have any, and may use one twice.
class OV_API GltfNames {
public:
    /// @param kind "mesh", for objects without a name
    explicit GltfNames(ovMemory::StringView kind)
        : _kind(kind) {}

    /// The name itself if no earlier object has it, else "name (2)", "name (3)", ...; without a name
    /// "mesh 0" for the index 0, and so on.
    ovMemory::String makeUnique(ovMemory::StringView name, std::size_t index);

private:
    ovMemory::String _kind;
    ovMemory::NameMap<unsigned int> _uses; // by name: the last number given to one of that name
};

} // namespace ovGraphics::detail
