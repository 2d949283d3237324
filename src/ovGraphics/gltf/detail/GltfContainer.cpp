#include <ovGraphics/gltf/detail/GltfContainer.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fmt/format.h>

namespace ovGraphics::detail {

using Bytes = ovMemory::BufferView<const unsigned char>;

namespace {

constexpr std::size_t HEADER_BYTES = 12;
constexpr std::size_t CHUNK_HEADER_BYTES = 8;
constexpr std::uint32_t JSON_CHUNK = 0x4e4f534a;   // "JSON"
constexpr std::uint32_t BINARY_CHUNK = 0x004e4942; // "BIN" and a zero

std::uint32_t readWord(Bytes bytes, std::size_t offset) {
    return std::uint32_t(bytes[offset]) | std::uint32_t(bytes[offset + 1]) << 8 |
           std::uint32_t(bytes[offset + 2]) << 16 | std::uint32_t(bytes[offset + 3]) << 24;
}

struct Chunk {
    std::uint32_t type = 0;
    Bytes bytes;
};

// The chunk at an offset, which moves behind it. Nothing when it does not fit.
std::optional<Chunk> takeChunk(Bytes file, std::size_t& offset) {
    if (file.size() - offset < CHUNK_HEADER_BYTES)
        return {};
    const std::size_t length = readWord(file, offset);
    const std::uint32_t type = readWord(file, offset + 4);
    offset += CHUNK_HEADER_BYTES;
    if (length > file.size() - offset)
        return {};
    const Bytes content = file.subspan(offset, length);
    offset += length;
    return Chunk{type, content};
}

} // namespace

bool isBinaryGltf(Bytes bytes) {
    return bytes.size() >= 4 && std::memcmp(bytes.data(), "glTF", 4) == 0;
}

std::optional<GltfContainer> openGltfContainer(Bytes bytes, ovMemory::String& error) {
    const auto textOf = [](Bytes part) {
        return ovMemory::StringView(reinterpret_cast<const char*>(part.data()), part.size());
    };
    error.clear();
    // Anything else is taken for text: the JSON reader's message then says what is wrong, with line and
    // column.
    if (!isBinaryGltf(bytes))
        return GltfContainer{textOf(bytes), {}};
    const auto fail = [&](ovMemory::String text) -> std::optional<GltfContainer> {
        error = std::move(text);
        return {};
    };
    if (bytes.size() < HEADER_BYTES)
        return fail(fmt::format("the file is cut short: {} bytes, less than the header", bytes.size()));
    if (readWord(bytes, 4) != 2)
        return fail(
            fmt::format("the file is binary glTF of version {}; only 2 can be read", readWord(bytes, 4)));
    const std::size_t length = readWord(bytes, 8);
    if (length < HEADER_BYTES || length > bytes.size())
        return fail(fmt::format("the file is cut short or damaged: its header says {} bytes, it has {}",
                                length, bytes.size()));
    const Bytes file = bytes.first(length);
    std::size_t offset = HEADER_BYTES;
    const auto json = takeChunk(file, offset);
    if (!json || json->type != JSON_CHUNK)
        return fail("the file is damaged: its first chunk is not whole, or is not JSON");
    GltfContainer container{textOf(json->bytes), {}};
    // It is padded with blanks, but some programs write zeros.
    while (container.json.ends_with('\0'))
        container.json.remove_suffix(1);
    if (offset == file.size())
        return container;
    const auto binary = takeChunk(file, offset);
    if (!binary)
        return fail("the file is damaged: its second chunk is longer than what is left of the file");
    // The format asks readers to skip chunks that they do not know.
    if (binary->type == BINARY_CHUNK)
        container.binary = binary->bytes;
    return container;
}

} // namespace ovGraphics::detail
