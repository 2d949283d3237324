#include <algorithm>
#include <cstring>
#include <new>
#include <ovExport/detail/NodeArena.h>

namespace ovExport::detail {

namespace {

constexpr std::size_t SMALLEST_CHUNK_BYTES = 1024;
constexpr std::size_t LARGEST_CHUNK_BYTES = 1024 * 1024;

} // namespace

NodeArena::~NodeArena() {
    while (_last) {
        Chunk* const previous = _last->previous;
        ::operator delete(_last);
        _last = previous;
    }
}

void* NodeArena::_allocateFromNewChunk(std::size_t size) {
    // Chunks double, so that a small tree takes a kilobyte and a large one few allocations.
    const std::size_t usual = std::clamp(2 * _lastChunkSize, SMALLEST_CHUNK_BYTES, LARGEST_CHUNK_BYTES);
    // What is large gets a chunk of its own, so that the rest of the current one stays in use.
    const bool isLarge = size > usual / 4;
    const std::size_t chunkSize = isLarge ? size : usual;
    auto* const chunk = static_cast<Chunk*>(::operator new(sizeof(Chunk) + chunkSize));
    // A list through the chunks themselves: freeing the tree needs no other memory and no recursion.
    _bytes += sizeof(Chunk) + chunkSize;
    chunk->previous = _last;
    _last = chunk;
    char* const place = reinterpret_cast<char*>(chunk + 1);
    if (!isLarge) {
        _lastChunkSize = chunkSize;
        _next = place + size;
        _available = chunkSize - size;
    }
    return place;
}

char* NodeArena::copyText(ovMemory::StringView text) {
    char* const copy = static_cast<char*>(allocate(text.size() + 1));
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = '\0';
    return copy;
}

NodeBlock* NodeBlock::create(NodeArena& arena, std::uint32_t capacity) {
    void* const place = arena.allocate(sizeof(NodeBlock) + std::size_t{capacity} * sizeof(Node));
    auto* const block = new (place) NodeBlock;
    block->capacity = capacity;
    return block;
}

} // namespace ovExport::detail
