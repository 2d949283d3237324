#include <ovGraphics/gltf/detail/GltfReport.h>

#include <algorithm>
#include <fmt/format.h>

namespace ovGraphics::detail {

using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr std::size_t MAX_QUOTED_BYTES = 80;

} // namespace

void GltfReport::warn(String text) {
    // The same fault is often met once for each primitive or node.
    if (std::find(_warnings.begin(), _warnings.end(), text) != _warnings.end())
        return;
    if (_warnings.size() < MAX_WARNINGS)
        _warnings.push_back(std::move(text));
    else
        ++_unkeptWarnings;
}

bool GltfReport::fail(String text) {
    // The first error is the cause; later ones are mostly its consequence.
    if (_error.empty())
        _error = std::move(text);
    return false;
}

bool GltfReport::charge(std::size_t count, std::size_t size, StringView what) {
    // A division, because the product may overflow: count comes from the file.
    if (count > _bytesLeft / size)
        return fail(
            fmt::format("{} would take {} x {} bytes, which is more than what is left of the {} bytes "
                        "that the file may take; raise maxBytes if it is trusted",
                        what, count, size, _maxBytes));
    _bytesLeft -= count * size;
    return true;
}

ovMemory::Buffer<String> GltfReport::takeWarnings() {
    if (_unkeptWarnings > 0)
        _warnings.push_back(fmt::format("{} more warnings are not shown", _unkeptWarnings));
    _unkeptWarnings = 0;
    return std::move(_warnings);
}

String describeGltf(StringView kind, std::size_t index, StringView name) {
    return name.empty() ? fmt::format("{} {}", kind, index)
                        : fmt::format("{} {} {}", kind, index, quoteGltf(name));
}

String quoteGltf(StringView text) {
    std::size_t length = std::min(text.size(), MAX_QUOTED_BYTES);
    // Not in the middle of a character: bytes 10xxxxxx continue one.
    while (length < text.size() && length > 0 && (static_cast<unsigned char>(text[length]) & 0xc0) == 0x80)
        --length;
    String quoted = "\"";
    for (const char c : text.substr(0, length))
        quoted += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? '?' : c;
    quoted += length < text.size() ? "...\"" : "\"";
    return quoted;
}

} // namespace ovGraphics::detail
