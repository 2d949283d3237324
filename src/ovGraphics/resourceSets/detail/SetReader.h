// Reads a set.
#pragma once

#include <functional>
#include <ovGraphics/resourceSets/ResourceSet.h>
#include <ovGraphics/resourceSets/detail/SetData.h>
#include <set>

namespace ovGraphics {
class System;
}

namespace ovGraphics::detail {

template <typename T>
struct SetMember;

/// Makes the resources of one tree.
class OV_API SetReader {
public:
    /// @param text that the tree was read from @param folder of the set @param loading whether resources are
    /// loaded
    SetReader(System& system, ovMemory::StringView text, ovMemory::StringView folder, bool loading,
              ResourceSetLoadResult& result);

    /// @return false with one problem when the tree is no set
    bool read(const ovExport::Node& root);

private:
    using Tree = ovExport::Node;
    using ReadEntry = std::function<void(ovMemory::StringView name, const Tree& entry)>;

    void _readSection(const Tree& root, ovMemory::StringView section, ovMemory::StringView kind,
                      const ReadEntry& readEntry);
    void _readSampler(ovMemory::StringView name, const Tree& entry);
    void _readTexture(ovMemory::StringView name, const Tree& entry);
    bool _readTextureFile(Texture& texture, const Tree& entry);
    bool _readTexels(Texture& texture, const Tree& entry);
    bool _checkSize(const Texture& texture, const Tree& entry);
    void _readMesh(ovMemory::StringView name, const Tree& entry);
    bool _readArrays(Mesh& mesh, const Tree& entry);
    void _readNode(ovMemory::StringView name, const Tree& entry);
    void _readQueue(ovMemory::StringView name, const Tree& entry);
    void _readEntity(RenderQueue& queue, const Tree& entry);
    void _hangNodes(const Tree& root);

    template <typename T>
    bool _readMembers(T& resource, const Tree& entry, ovMemory::BufferView<const SetMember<T>> members,
                      bool withContent);
    template <typename T>
    void _load(T& resource, const Tree& entry);
    bool _findBlock(const Tree* place, ovMemory::StringView member, const Tree& entry, SetBytes& bytes);
    ovMemory::StringView _textOf(const Tree& entry, ovMemory::StringView member);
    bool _flagOf(const Tree& entry, ovMemory::StringView member, bool otherwise);

    /// Adds a problem of the entry that is being read.
    bool _refuse(const Tree& place, const ovMemory::String& message);

    System& _system;
    ovMemory::StringView _text;
    ovMemory::String _folder;
    bool _loading;
    ResourceSetLoadResult& _result;
    SetDataReader _data;
    ovMemory::String _dataError; ///< why blocks cannot be had
    ovMemory::String _subject;   ///< "texture 'planks'"
};

} // namespace ovGraphics::detail
