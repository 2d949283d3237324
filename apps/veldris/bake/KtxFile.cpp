// The layout is that of Khronos' "KTX File Format Specification", version 2, and of the basic block of its
// "Data Format Specification": header, places of the mips, descriptor of a texel, keys with values, then the
// mips from the smallest on, each with its six faces in order.
#include <veldris/bake/KtxFile.h>

#include <algorithm>
#include <fmt/format.h>
#include <veldris/bake/CubeFileParts.h>

namespace veldris {

using ovImages::COMPONENT_TYPE;
using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;
using ovMemory::StringView;

namespace {

/// Places in the file, in words.
enum WORD : std::size_t {
    IDENTIFIER = 0, ///< three words
    VK_FORMAT = 3,
    TYPE_SIZE = 4,
    WIDTH = 5,
    HEIGHT = 6,
    DEPTH = 7,
    LAYERS = 8,
    FACES = 9,
    LEVELS = 10,
    SUPERCOMPRESSION = 11,
    DESCRIPTOR_OFFSET = 12,
    DESCRIPTOR_BYTES = 13,
    KEYS_OFFSET = 14,
    KEYS_BYTES = 15,
    GLOBAL_DATA = 16, ///< offset and bytes of what supercompression shares, two words each
    HEADER_WORDS = 20
};

constexpr std::array<std::uint32_t, 3> IDENTIFIER_WORDS = {0x58544bab, 0xbb303220,
                                                           0x0a1a0a0d}; // "«KTX 20»\r\n\x1a\n"
constexpr std::uint32_t FORMAT_HALF = 97;                               // VK_FORMAT_R16G16B16A16_SFLOAT
constexpr std::uint32_t FORMAT_FLOAT = 109;                             // VK_FORMAT_R32G32B32A32_SFLOAT
constexpr std::size_t LEVEL_WORDS = 6; // offset, bytes in the file and bytes of texels, two words each
constexpr StringView ORIENTATION_KEY = "KTXorientation";
constexpr StringView ORIENTATION = "rd"; // rows to the right, the first on top
constexpr StringView WRITER_KEY = "KTXwriter";
constexpr StringView WRITER = "veldris bake";

constexpr std::size_t DESCRIPTOR_WORDS = 23; // its size, six of the block and four for each channel
constexpr std::size_t MODEL_WORD = 3;
constexpr std::uint32_t MODEL_MASK = 0x00ff00ff; // not the primaries and whether alpha is premultiplied
using Descriptor = std::array<std::uint32_t, DESCRIPTOR_WORDS>;

std::uint32_t componentSize(COMPONENT_TYPE type) {
    return static_cast<std::uint32_t>(ovImages::getComponentSize(type));
}

std::uint32_t texelSize(COMPONENT_TYPE type) {
    return 4 * componentSize(type);
}

Descriptor describeTexels(COMPONENT_TYPE type) {
    constexpr std::uint32_t VERSION = 2;
    constexpr std::uint32_t MODEL = 1 | 1 << 8 | 1 << 16; // RGBSDA, BT.709, linear
    constexpr std::uint32_t CHANNELS[] = {0, 1, 2, 15};   // red, green, blue, alpha
    constexpr std::uint32_t SIGNED_FLOAT = 0xc0;
    constexpr std::uint32_t LOWER = 0xbf800000; // -1
    constexpr std::uint32_t UPPER = 0x3f800000; // 1
    const std::uint32_t bits = 8 * componentSize(type);
    Descriptor words = {DESCRIPTOR_WORDS * 4, 0, VERSION | (DESCRIPTOR_WORDS - 1) * 4 << 16, MODEL, 0,
                        texelSize(type),      0};
    std::size_t at = 7;
    for (std::uint32_t i = 0; i < std::size(CHANNELS); ++i, at += 4) {
        words[at] = i * bits | (bits - 1) << 16 | (SIGNED_FLOAT | CHANNELS[i]) << 24;
        words[at + 2] = LOWER;
        words[at + 3] = UPPER;
    }
    return words;
}

/// Where everything is, by the format's rules; nothing overflows, whatever the header.
struct Layout {
    std::uint64_t descriptor;
    std::uint64_t keys;
    std::uint64_t texels;
    std::uint64_t size;
};

/// Mips are aligned to texels, and are whole texels, so that only the first needs padding.
Layout layOut(const CubeFileHeader& header, std::uint64_t descriptorBytes, std::uint64_t keysBytes) {
    Layout layout = {};
    layout.descriptor = (HEADER_WORDS + LEVEL_WORDS * header.mipCount) * 4;
    layout.keys = layout.descriptor + descriptorBytes;
    const std::uint64_t alignment = texelSize(header.type);
    layout.texels = (layout.keys + keysBytes + alignment - 1) / alignment * alignment;
    layout.size = layout.texels + cubeSize(header);
    return layout;
}

/// The words of the places of all mips.
Buffer<std::uint32_t> placesOf(const CubeFileHeader& header, const Layout& layout) {
    Buffer<std::uint32_t> places;
    std::uint64_t end = layout.size;
    for (unsigned int mip = 0; mip < header.mipCount; ++mip) {
        const std::uint64_t bytes = FACE_COUNT * cubeFaceSize(header, mip);
        end -= bytes;
        for (const std::uint64_t value : {end, bytes, bytes}) {
            places.push_back(static_cast<std::uint32_t>(value));
            places.push_back(static_cast<std::uint32_t>(value >> 32));
        }
    }
    return places;
}

bool hasIdentifier(BufferView<const unsigned char> bytes) {
    if (bytes.size() < HEADER_WORDS * 4)
        return false;
    for (std::size_t i = 0; i < IDENTIFIER_WORDS.size(); ++i) {
        if (readWord(bytes, IDENTIFIER + i) != IDENTIFIER_WORDS[i])
            return false;
    }
    return true;
}

bool readHeader(BufferView<const unsigned char> bytes, CubeFileHeader& header, String& error) {
    if (!hasIdentifier(bytes)) {
        error = "it is no KTX file of version 2.";
        return false;
    }
    const std::uint32_t format = readWord(bytes, VK_FORMAT);
    const COMPONENT_TYPE type = format == FORMAT_HALF ? COMPONENT_TYPE::HALF : COMPONENT_TYPE::FLOAT;
    if (readWord(bytes, FACES) != FACE_COUNT || readWord(bytes, LAYERS) > 0 || readWord(bytes, DEPTH) > 0)
        error = "it holds no cube, or several; give a file of one cube.";
    else if (const std::uint32_t scheme = readWord(bytes, SUPERCOMPRESSION); scheme != 0)
        error = fmt::format("its texels are compressed by scheme {}; give a file without supercompression.",
                            scheme);
    else if (format != FORMAT_HALF && format != FORMAT_FLOAT)
        error = fmt::format("its texels have Vulkan's format {}; only R16G16B16A16_SFLOAT ({}) and "
                            "R32G32B32A32_SFLOAT ({}) are read.",
                            format, FORMAT_HALF, FORMAT_FLOAT);
    else if (readWord(bytes, TYPE_SIZE) != componentSize(type))
        error = fmt::format("its components have {} bytes where its format has {}.",
                            readWord(bytes, TYPE_SIZE), componentSize(type));
    if (!error.empty())
        return false;
    // A count of 0 asks the reader to make the mips.
    header = {readWord(bytes, WIDTH), readWord(bytes, HEIGHT), std::max(readWord(bytes, LEVELS), 1u), type};
    return checkCubeHeader(header, error);
}

/// @param layout of a file that is as long as it should be
bool checkPlaces(BufferView<const unsigned char> bytes, const CubeFileHeader& header, const Layout& layout,
                 String& error) {
    const Buffer<std::uint32_t> places = placesOf(header, layout);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (readWord(bytes, HEADER_WORDS + i) != places[i]) {
            error = fmt::format("mip {} is not where the format puts it, or has another length.",
                                i / LEVEL_WORDS);
            return false;
        }
    }
    bool hasGlobalData = false;
    for (std::size_t i = GLOBAL_DATA; i < HEADER_WORDS; ++i)
        hasGlobalData |= readWord(bytes, i) != 0;
    if (readWord(bytes, DESCRIPTOR_OFFSET) != layout.descriptor ||
        (readWord(bytes, KEYS_BYTES) > 0 && readWord(bytes, KEYS_OFFSET) != layout.keys) || hasGlobalData)
        error = "its descriptor, keys or global data are not where the format puts them.";
    return error.empty();
}

bool checkDescriptor(BufferView<const unsigned char> descriptor, COMPONENT_TYPE type, String& error) {
    const Descriptor expected = describeTexels(type);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const std::uint32_t mask = i == MODEL_WORD ? MODEL_MASK : ~0u;
        if (((readWord(descriptor, i) ^ expected[i]) & mask) != 0) {
            error =
                "its descriptor tells of other texels than linear red, green, blue and alpha of its format.";
            return false;
        }
    }
    return true;
}

/// Takes a key with its value from the front. @return false when there is none whole
bool takeEntry(BufferView<const unsigned char>& keys, StringView& key, StringView& value) {
    if (keys.size() < 4)
        return false;
    const std::uint64_t bytes = readWord(keys, 0);
    const std::uint64_t padded = 4 + (bytes + 3) / 4 * 4;
    if (padded > keys.size())
        return false;
    const StringView entry(reinterpret_cast<const char*>(keys.data()) + 4, bytes);
    const std::size_t end = entry.find('\0');
    if (end == StringView::npos)
        return false;
    key = entry.substr(0, end);
    value = entry.substr(end + 1);
    keys = keys.subspan(padded);
    return true;
}

bool checkKeys(BufferView<const unsigned char> keys, String& error) {
    StringView key;
    StringView value;
    while (!keys.empty()) {
        if (!takeEntry(keys, key, value)) {
            error = "its keys and values are not whole.";
            return false;
        }
        if (key == ORIENTATION_KEY && value.substr(0, value.find('\0')) != ORIENTATION) {
            error = "its rows do not run to the right and down; give a file with the orientation rd.";
            return false;
        }
    }
    return true;
}

/// Appends a key with a value that is text.
void appendEntry(Buffer<unsigned char>& bytes, StringView key, StringView value) {
    appendWord(bytes, static_cast<std::uint32_t>(key.size() + value.size() + 2));
    for (const StringView text : {key, value}) {
        bytes.insert(bytes.end(), text.begin(), text.end());
        bytes.push_back(0);
    }
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

Buffer<unsigned char> keysOfWriter() {
    Buffer<unsigned char> bytes; // the format wants them sorted
    appendEntry(bytes, ORIENTATION_KEY, ORIENTATION);
    appendEntry(bytes, WRITER_KEY, WRITER);
    return bytes;
}

std::array<std::uint32_t, HEADER_WORDS> headerWords(const CubeFileHeader& header, const Layout& layout,
                                                    std::size_t keysBytes) {
    std::array<std::uint32_t, HEADER_WORDS> words = {};
    std::ranges::copy(IDENTIFIER_WORDS, words.begin());
    words[VK_FORMAT] = header.type == COMPONENT_TYPE::HALF ? FORMAT_HALF : FORMAT_FLOAT;
    words[TYPE_SIZE] = componentSize(header.type);
    words[WIDTH] = header.width;
    words[HEIGHT] = header.height;
    words[FACES] = FACE_COUNT;
    words[LEVELS] = header.mipCount;
    words[DESCRIPTOR_OFFSET] = static_cast<std::uint32_t>(layout.descriptor);
    words[DESCRIPTOR_BYTES] = DESCRIPTOR_WORDS * 4;
    words[KEYS_OFFSET] = static_cast<std::uint32_t>(layout.keys);
    words[KEYS_BYTES] = static_cast<std::uint32_t>(keysBytes);
    return words;
}

} // namespace

bool decodeKtx(BufferView<const unsigned char> bytes, CubeMap& cube, String& error) {
    error.clear();
    CubeFileHeader header;
    if (!readHeader(bytes, header, error))
        return false;
    const std::uint32_t descriptorBytes = readWord(bytes, DESCRIPTOR_BYTES);
    const std::uint32_t keysBytes = readWord(bytes, KEYS_BYTES);
    // Where everything must be is computed, and then compared with what the file says: no offset of the file
    // is ever followed.
    const Layout layout = layOut(header, descriptorBytes, keysBytes);
    if (layout.size != bytes.size())
        error = fmt::format("it has {} bytes where its header tells of {}.", bytes.size(), layout.size);
    else if (descriptorBytes != DESCRIPTOR_WORDS * 4)
        error =
            fmt::format("its descriptor has {} bytes instead of {}.", descriptorBytes, DESCRIPTOR_WORDS * 4);
    CubeMap read;
    if (!error.empty() || !checkPlaces(bytes, header, layout, error) ||
        !checkDescriptor(bytes.subspan(layout.descriptor, descriptorBytes), header.type, error) ||
        !checkKeys(bytes.subspan(layout.keys, keysBytes), error) || !allocateCube(header, read, error))
        return false;
    std::size_t end = bytes.size();
    for (ovImages::Image& mip : read.mips) {
        const BufferView<unsigned char> target = mip.getBytes();
        end -= target.size();
        std::copy_n(bytes.data() + end, target.size(), target.data());
    }
    cube = std::move(read);
    return true;
}

Buffer<unsigned char> encodeKtx(const CubeMap& cube) {
    CubeFileHeader header;
    if (!cubeHeaderOf(cube, header))
        return {};
    const Buffer<unsigned char> keys = keysOfWriter();
    const Layout layout = layOut(header, DESCRIPTOR_WORDS * 4, keys.size());
    Buffer<unsigned char> bytes;
    bytes.reserve(layout.size);
    for (const std::uint32_t word : headerWords(header, layout, keys.size()))
        appendWord(bytes, word);
    for (const std::uint32_t word : placesOf(header, layout))
        appendWord(bytes, word);
    for (const std::uint32_t word : describeTexels(header.type))
        appendWord(bytes, word);
    bytes.insert(bytes.end(), keys.begin(), keys.end());
    bytes.resize(layout.texels);
    for (std::size_t mip = cube.mips.size(); mip-- > 0;) {
        const BufferView<const unsigned char> texels = cube.mips[mip].getBytes();
        bytes.insert(bytes.end(), texels.begin(), texels.end());
    }
    return bytes;
}

} // namespace veldris
