#include <ovGraphics/gltf/detail/GltfUri.h>

#include <algorithm>
#include <cctype>

namespace ovGraphics::detail {

using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView DATA_SCHEME = "data:";

int digitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

String decodePercent(StringView text) {
    String decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escaped =
            text[i] == '%' && i + 2 < text.size() && digitOf(text[i + 1]) >= 0 && digitOf(text[i + 2]) >= 0;
        decoded += escaped ? static_cast<char>(digitOf(text[i + 1]) * 16 + digitOf(text[i + 2])) : text[i];
        i += escaped ? 2 : 0;
    }
    return decoded;
}

int sextetOf(char c) {
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+')
        return 62;
    return c == '/' ? 63 : -1;
}

std::optional<ovMemory::Buffer<unsigned char>> decodeBase64(StringView text) {
    // Padding is optional: RFC 4648 lets formats leave it out.
    for (int padding = 0; padding < 2 && text.ends_with('='); ++padding)
        text.remove_suffix(1);
    if (text.size() % 4 == 1)
        return {};
    ovMemory::Buffer<unsigned char> bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    unsigned int bits = 0;
    unsigned int bitCount = 0;
    for (const char c : text) {
        const int sextet = sextetOf(c);
        if (sextet < 0)
            return {};
        bits = (bits << 6 | static_cast<unsigned int>(sextet)) & 0xffffu;
        bitCount += 6;
        if (bitCount < 8)
            continue;
        bitCount -= 8;
        bytes.push_back(static_cast<unsigned char>(bits >> bitCount));
    }
    return bytes;
}

// A colon alone is not enough: a name like "a/b:c.png" is a path.
bool hasScheme(StringView uri) {
    const std::size_t colon = uri.find(':');
    if (colon == StringView::npos || colon == 0 || !std::isalpha(static_cast<unsigned char>(uri[0])))
        return false;
    return std::all_of(uri.begin(), uri.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](unsigned char c) { return std::isalnum(c) || c == '+' || c == '-' || c == '.'; });
}

// Part by part, so that a file named "..a" may be read.
bool climbs(StringView path) {
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (path.substr(begin, end - begin) == "..")
            return true;
        begin = end + 1;
    }
    return false;
}

} // namespace

bool isDataUri(StringView uri) {
    return uri.starts_with(DATA_SCHEME);
}

std::optional<ovMemory::Buffer<unsigned char>> decodeDataUri(StringView uri) {
    const std::size_t comma = uri.find(',');
    if (!isDataUri(uri) || comma == StringView::npos)
        return {};
    if (uri.substr(0, comma).ends_with(";base64"))
        return decodeBase64(uri.substr(comma + 1));
    const String bytes = decodePercent(uri.substr(comma + 1));
    return ovMemory::Buffer<unsigned char>(bytes.begin(), bytes.end());
}

std::optional<String> decodeRelativeUri(StringView uri) {
    // Checked after decoding: "%2e%2e" climbs too. A backslash counts as a separator, as files that were made
    // on Windows have it.
    String path = decodePercent(uri);
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.empty() || path.front() == '/' || path.find('\0') != String::npos || hasScheme(uri) ||
        climbs(path))
        return {};
    return path;
}

} // namespace ovGraphics::detail
