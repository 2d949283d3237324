#include <ovImages/detail/ExrHeader.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace ovImages::detail {

namespace {

constexpr std::size_t FIRST_HEADER_OFFSET = 8;
constexpr std::size_t FLAGS_OFFSET = 5;
constexpr unsigned MULTI_PART_FLAG = 0x10;
// The longest name with the flag for long names set, with room to spare.
constexpr std::size_t MAX_NAME_BYTES = 256;

using Bytes = ovMemory::BufferView<const unsigned char>;

// Reads on from an offset; every step tells whether the bytes were there.
// Does not interpret what it walks over. It only makes sure that the library, which does, will not believe a
// length that the file has not.
class Walker {
public:
    explicit Walker(Bytes bytes)
        : _rest(bytes) {}

    bool isAtEnd() const { return _rest.empty(); }

    // The text up to the next zero byte, which must be near.
    bool takeName(ovMemory::StringView& name) {
        const auto near = _rest.first(std::min(_rest.size(), MAX_NAME_BYTES));
        const auto end = std::find(near.begin(), near.end(), 0);
        if (end == near.end())
            return false;
        const auto size = static_cast<std::size_t>(end - near.begin());
        name = {reinterpret_cast<const char*>(near.data()), size};
        _rest = _rest.subspan(size + 1);
        return true;
    }

    bool takeNumber(std::uint32_t& number) {
        Bytes bytes;
        if (!take(4, bytes))
            return false;
        number = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            // Byte by byte, since the file is little-endian whatever the machine is.
            number = number << 8 | bytes[i];
        return true;
    }

    bool take(std::size_t size, Bytes& bytes) {
        if (size > _rest.size())
            return false;
        bytes = _rest.first(size);
        _rest = _rest.subspan(size);
        return true;
    }

    // A length and as many bytes.
    bool takeValue(Bytes& bytes) {
        std::uint32_t size = 0;
        return takeNumber(size) && take(size, bytes);
    }

private:
    Bytes _rest;
};

// Sizes of the types that the library reads by type, whatever length is stated.
struct FixedSize {
    ovMemory::StringView type;
    std::size_t size;
};
constexpr FixedSize FIXED_SIZES[] = {{"box2f", 16},
                                     {"box2i", 16},
                                     {"chromaticities", 32},
                                     {"compression", 1},
                                     {"deepImageState", 1},
                                     {"double", 8},
                                     {"envmap", 1},
                                     {"float", 4},
                                     {"int", 4},
                                     {"keycode", 28},
                                     {"m33d", 72},
                                     {"m33f", 36},
                                     {"m44d", 128},
                                     {"m44f", 64},
                                     {"lineOrder", 1},
                                     {"v2d", 16},
                                     {"v2f", 8},
                                     {"v2i", 8},
                                     {"rational", 8},
                                     {"tiledesc", 9},
                                     {"v3d", 24},
                                     {"v3f", 12},
                                     {"v3i", 12},
                                     {"timecode", 8}};

bool isChannelListSound(Walker list) {
    constexpr std::size_t CHANNEL_BYTES = 16;
    ovMemory::StringView name;
    Bytes channel;
    while (list.takeName(name)) {
        // The list must end with its empty name and exactly there: the library reads on until it finds one.
        if (name.empty())
            return list.isAtEnd();
        if (!list.take(CHANNEL_BYTES, channel))
            return false;
    }
    return false;
}

bool isStringVectorSound(Walker list) {
    Bytes text;
    while (!list.isAtEnd())
        if (!list.takeValue(text))
            return false;
    return true;
}

bool isPreviewSound(Walker preview, std::size_t size) {
    constexpr std::uint64_t MAX_PREVIEW_SIDE = 1u << 16;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    // The product is computed in 64 bits, where two such sides cannot wrap round.
    return preview.takeNumber(width) && preview.takeNumber(height) && width < MAX_PREVIEW_SIDE &&
           height < MAX_PREVIEW_SIDE && std::uint64_t(width) * height * 4 + 8 == size;
}

bool isValueSound(ovMemory::StringView type, Bytes value) {
    if (type == "chlist")
        return isChannelListSound(Walker(value));
    if (type == "stringvector")
        return isStringVectorSound(Walker(value));
    if (type == "preview")
        return isPreviewSound(Walker(value), value.size());
    for (const FixedSize& fixed : FIXED_SIZES)
        if (fixed.type == type)
            return fixed.size == value.size();
    return true;
}

} // namespace

ovMemory::String checkExrAttributes(Bytes bytes) {
    if (bytes.size() < FIRST_HEADER_OFFSET)
        return "the data ends within the header";
    const bool isMultiPart = (bytes[FLAGS_OFFSET] & MULTI_PART_FLAG) != 0;
    Walker walker(bytes.subspan(FIRST_HEADER_OFFSET));
    // An empty name ends a header; of several parts, an empty header ends the headers.
    bool isHeaderEmpty = true;
    while (true) {
        ovMemory::StringView name;
        ovMemory::StringView type;
        if (!walker.takeName(name))
            return "the header does not end";
        if (name.empty() && (!isMultiPart || isHeaderEmpty))
            return {};
        isHeaderEmpty = name.empty();
        if (isHeaderEmpty)
            continue;
        Bytes value;
        if (!walker.takeName(type) || !walker.takeValue(value))
            return fmt::format("the attribute \"{}\" is longer than the file", name);
        if (!isValueSound(type, value))
            return fmt::format("the attribute \"{}\" has {} bytes, which do not make a {}", name,
                               value.size(), type);
    }
}

} // namespace ovImages::detail
