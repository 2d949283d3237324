// The memory of a tree. Internal to the library.
#pragma once

#include <ovExport/Node.h>

namespace ovExport::detail {

/// Memory that is handed out piece by piece and freed as a whole.
class NodeArena : public ovMemory::Borrowable {
public:
    NodeArena() = default;
    ~NodeArena();
    NodeArena(const NodeArena&) = delete;
    NodeArena& operator=(const NodeArena&) = delete;

    /// Memory aligned for pointers, until the arena is destroyed. Throws std::bad_alloc.
    void* allocate(std::size_t size) {
        size = (size + ALIGNMENT - 1) & ~(ALIGNMENT - 1);
        if (size > _available)
            return _allocateFromNewChunk(size);
        char* const place = _next;
        _next += size;
        _available -= size;
        return place;
    }

    /// Bytes that it took from the system, those included that nobody has asked for yet.
    std::size_t getBytes() const { return _bytes; }

    /// A copy of a text with a NUL behind it.
    char* copyText(ovMemory::StringView text);

private:
    struct Chunk {
        Chunk* previous;
    };
    static constexpr std::size_t ALIGNMENT = alignof(void*);

    void* _allocateFromNewChunk(std::size_t size);

    char* _next = nullptr;
    std::size_t _available = 0;
    std::size_t _lastChunkSize = 0;
    std::size_t _bytes = 0;
    Chunk* _last = nullptr;
};

/// Children of a node, side by side. The children of a text come in one block. Children that are added later
/// make further blocks, each half as large as all before it together, so that nodes never move and finding
/// one takes few steps.
struct NodeBlock {
    NodeBlock* next = nullptr;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;

    static NodeBlock* create(NodeArena& arena, std::uint32_t capacity);

    /// The nodes: count are made, of capacity.
    Node* getNodes() { return reinterpret_cast<Node*>(this + 1); }

    Node* append(const Node::Record& record) { return new (getNodes() + count++) Node(record); }
};

} // namespace ovExport::detail
