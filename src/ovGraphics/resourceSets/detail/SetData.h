// The bytes of a set that have no file of their own, one block behind another.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovExport {
class Node;
}

namespace ovGraphics::detail {

/// Added to the path of a set.
inline constexpr ovMemory::StringView SET_DATA_SUFFIX = ".data";

using SetBytes = ovMemory::BufferView<const unsigned char>;

/// Collects blocks while a set is written.
class OV_API SetDataWriter {
public:
    /// Appends a block. @param node gets its place: "offset" and "size", in bytes
    void add(SetBytes bytes, ovExport::Node& node);
    bool isEmpty() const { return _bytes.empty(); }
    const ovMemory::Buffer<unsigned char>& getBytes() const { return _bytes; }
    /// Writes what tells whether a file is this one: its name, size and hash.
    void describe(ovMemory::StringView fileName, ovExport::Node& node) const;

private:
    ovMemory::Buffer<unsigned char> _bytes;
};

/// Finds blocks while a set is read.
class OV_API SetDataReader {
public:
    /// Reads the file that a set's member "data" describes. @param folder of the set
    /// @return an empty text, or why blocks cannot be had
    ovMemory::String open(const ovExport::Node& description, ovMemory::StringView folder);
    /// The block at a place, as long as this object lives.
    /// @return an empty text, or why there is no such block
    ovMemory::String find(const ovExport::Node& place, SetBytes& bytes) const;

private:
    ovMemory::Buffer<char> _bytes;
};

} // namespace ovGraphics::detail
