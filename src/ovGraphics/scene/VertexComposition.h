// What the vertices of a mesh are made of.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

/// One named value of a vertex. The name is that of the attribute in vertex programs: "POSITION", "NORMAL",
/// "TEXCOORD", "TANGENT", "BINORMAL", or any other.
struct VertexAttribute {
    ovMemory::String name;
    FORMAT format = FORMAT::UNKNOWN;
    unsigned int offset = 0; ///< bytes from the start of a vertex
    bool operator==(const VertexAttribute&) const = default;
};

/// The attributes of a vertex in the order of memory, each a multiple of four bytes, packed without gaps. A
/// program reads components that an attribute lacks as (0, 0, 0, 1).
class OV_API VertexComposition {
public:
    /// Appends an attribute. @return false, changing nothing, for an empty or taken name and for a format
    /// that vertices cannot have (isVertexFormat), and beyond 16 attributes
    bool addAttribute(ovMemory::StringView name, FORMAT format);

    /// Whether vertices can have values of a format: 4 components of 8 bits, 2 or 4 of 16 bits, 1 to 4 of 32
    /// bits. UNORM and SNORM read as fractions, UINT and SINT as whole numbers turned into floats.
    static bool isVertexFormat(FORMAT format);

    unsigned int getAttributeCount() const { return static_cast<unsigned int>(_attributes.size()); }
    const VertexAttribute& getAttribute(unsigned int index) const { return _attributes[index]; }
    /// The attribute of a name, or null.
    const VertexAttribute* find(ovMemory::StringView name) const;
    /// Bytes from one vertex to the next.
    unsigned int getStride() const { return _stride; }

    bool operator==(const VertexComposition&) const = default;

private:
    ovMemory::Buffer<VertexAttribute> _attributes;
    unsigned int _stride = 0;
};

} // namespace ovGraphics
