// The layout is that of Khronos' "KTX File Format Specification", version 2, and of the basic block of its
// "Data Format Specification": header, places of the mips, descriptor of a texel, keys with values, then the
// mips from the smallest on, each with its six faces in order.
#include <ovImages/cubes/detail/KtxFile.h>

#include <algorithm>
#include <fmt/format.h>
#include <numeric>
#include <ovImages/cubes/detail/CubeFileParts.h>

namespace ovImages::detail {

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

using enum COMPONENT_TYPE;
constexpr COLOR_ENCODING LINEAR = COLOR_ENCODING::LINEAR;
constexpr COLOR_ENCODING SRGB = COLOR_ENCODING::SRGB;

// R8_UNORM, R8_SRGB, R8G8_UNORM, and so on by number of components, with their orders.
constexpr CubeFormat FORMATS[] = {{9, texelsInOrder(UINT8, 1)},     {15, texelsInOrder(UINT8, 1, SRGB)},
                                  {16, texelsInOrder(UINT8, 2)},    {22, texelsInOrder(UINT8, 2, SRGB)},
                                  {23, texelsInOrder(UINT8, 3)},    {29, texelsInOrder(UINT8, 3, SRGB)},
                                  {30, texelsBlueFirst(3, LINEAR)}, {36, texelsBlueFirst(3, SRGB)},
                                  {37, texelsInOrder(UINT8, 4)},    {43, texelsInOrder(UINT8, 4, SRGB)},
                                  {44, texelsBlueFirst(4, LINEAR)}, {50, texelsBlueFirst(4, SRGB)},
                                  {76, texelsInOrder(HALF, 1)},     {83, texelsInOrder(HALF, 2)},
                                  {90, texelsInOrder(HALF, 3)},     {FORMAT_HALF, texelsInOrder(HALF, 4)},
                                  {100, texelsInOrder(FLOAT, 1)},   {103, texelsInOrder(FLOAT, 2)},
                                  {106, texelsInOrder(FLOAT, 3)},   {FORMAT_FLOAT, texelsInOrder(FLOAT, 4)}};

constexpr std::size_t LEVEL_WORDS = 6; // offset, bytes in the file and bytes of texels, two words each
constexpr StringView ORIENTATION_KEY = "KTXorientation";
constexpr StringView ORIENTATION = "rd"; // rows to the right, the first on top
constexpr StringView WRITER_KEY = "KTXwriter";
constexpr StringView WRITER = "ovImages";

constexpr std::size_t BLOCK_WORDS = 7; // the descriptor's size and six of its block; four follow a channel
constexpr std::size_t SAMPLE_WORDS = 4;
constexpr std::size_t MODEL_WORD = 3;
constexpr std::uint32_t MODEL_MASK = 0x00ff00ff; // not the primaries and whether alpha is premultiplied

std::uint32_t componentSize(const CubeTexels& texels) {
    return static_cast<std::uint32_t>(getComponentSize(texels.type));
}

/// The descriptor of texels.
Buffer<std::uint32_t> describeTexels(const CubeTexels& texels) {
    constexpr std::uint32_t VERSION = 2;
    constexpr std::uint32_t MODEL = 1 | 1 << 8; // RGBSDA, BT.709
    constexpr std::uint32_t TRANSFER_LINEAR = 1 << 16;
    constexpr std::uint32_t TRANSFER_SRGB = 2 << 16;
    constexpr std::uint32_t ALPHA = 15; // red, green and blue are 0 to 2
    constexpr std::uint32_t SIGNED_FLOAT = 0xc0;
    constexpr std::uint32_t LINEAR_SAMPLE = 0x10; // alpha of sRGB texels
    const bool isFloat = texels.type != UINT8;
    const bool isSrgb = texels.encoding == SRGB;
    const std::uint32_t bits = 8 * componentSize(texels);
    const auto words = static_cast<std::uint32_t>(BLOCK_WORDS + SAMPLE_WORDS * texels.stored);
    Buffer<std::uint32_t> descriptor = {words * 4,
                                        0,
                                        VERSION | (words - 1) * 4 << 16,
                                        MODEL | (isSrgb ? TRANSFER_SRGB : TRANSFER_LINEAR),
                                        0,
                                        cubeTexelSize(texels),
                                        0};
    for (std::uint32_t i = 0; i < texels.stored; ++i) {
        // Blue stands first where red is read from the third component.
        std::uint32_t channel = i == 3 ? ALPHA : texels.from[0] == 2 ? 2 - i : i;
        if (isFloat)
            channel |= SIGNED_FLOAT;
        else if (isSrgb && i == 3)
            channel |= LINEAR_SAMPLE;
        constexpr std::uint32_t MINUS_ONE = 0xbf800000; // of floats
        constexpr std::uint32_t ONE = 0x3f800000;
        descriptor.push_back(i * bits | (bits - 1) << 16 | channel << 24);
        descriptor.push_back(0);
        descriptor.push_back(isFloat ? MINUS_ONE : 0);
        descriptor.push_back(isFloat ? ONE : 255);
    }
    return descriptor;
}

/// Where everything is, by the format's rules; nothing overflows, whatever the header.
struct Layout {
    std::uint64_t descriptor = 0;
    std::uint64_t keys = 0;
    Buffer<std::uint64_t> mips; ///< where each begins, the largest, which lies last, first
    std::uint64_t size = 0;
};

/// Mips are aligned to whole texels and whole words.
Layout layOut(const CubeFileHeader& header, std::uint64_t descriptorBytes, std::uint64_t keysBytes) {
    Layout layout;
    layout.descriptor = (HEADER_WORDS + LEVEL_WORDS * header.mipCount) * 4;
    layout.keys = layout.descriptor + descriptorBytes;
    layout.size = layout.keys + keysBytes;
    layout.mips.resize(header.mipCount);
    const std::uint64_t alignment = std::lcm(cubeTexelSize(header.texels), 4u);
    for (unsigned int mip = header.mipCount; mip-- > 0;) {
        layout.mips[mip] = (layout.size + alignment - 1) / alignment * alignment;
        layout.size = layout.mips[mip] + FACE_COUNT * cubeFaceSize(header, mip);
    }
    return layout;
}

/// The words of the places of all mips.
Buffer<std::uint32_t> placesOf(const CubeFileHeader& header, const Layout& layout) {
    Buffer<std::uint32_t> places;
    for (unsigned int mip = 0; mip < header.mipCount; ++mip) {
        const std::uint64_t bytes = FACE_COUNT * cubeFaceSize(header, mip);
        for (const std::uint64_t value : {layout.mips[mip], bytes, bytes}) {
            places.push_back(static_cast<std::uint32_t>(value));
            places.push_back(static_cast<std::uint32_t>(value >> 32));
        }
    }
    return places;
}

bool hasIdentifier(BufferView<const unsigned char> bytes) {
    if (bytes.size() < IDENTIFIER_WORDS.size() * 4)
        return false;
    for (std::size_t i = 0; i < IDENTIFIER_WORDS.size(); ++i) {
        if (readWord(bytes, IDENTIFIER + i) != IDENTIFIER_WORDS[i])
            return false;
    }
    return true;
}

bool readHeader(BufferView<const unsigned char> bytes, CubeFileHeader& header, String& error) {
    if (bytes.size() < HEADER_WORDS * 4 || !hasIdentifier(bytes)) {
        error = "it is no KTX file of version 2.";
        return false;
    }
    const bool isKnown = findTexels(FORMATS, readWord(bytes, VK_FORMAT), header.texels);
    if (readWord(bytes, FACES) != FACE_COUNT || readWord(bytes, LAYERS) > 0 || readWord(bytes, DEPTH) > 0)
        error = "it holds no cube, or several; give a file of one cube.";
    else if (const std::uint32_t scheme = readWord(bytes, SUPERCOMPRESSION); scheme != 0)
        error = fmt::format("its texels are compressed by scheme {}; give a file without supercompression.",
                            scheme);
    else if (!isKnown)
        error =
            fmt::format("its texels have Vulkan's format {}; only floats, half floats and 8 bits are read.",
                        readWord(bytes, VK_FORMAT));
    else if (readWord(bytes, TYPE_SIZE) != componentSize(header.texels))
        error = fmt::format("its components have {} bytes where its format has {}.",
                            readWord(bytes, TYPE_SIZE), componentSize(header.texels));
    if (!error.empty())
        return false;
    // A count of 0 asks the reader to make the mips.
    header = {readWord(bytes, WIDTH), readWord(bytes, HEIGHT), std::max(readWord(bytes, LEVELS), 1u),
              header.texels};
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

/// Other blocks may follow the basic one. The numbers that stand for 0 and 1 are not looked at: writers
/// differ in them, and the format gives them.
bool checkDescriptor(BufferView<const unsigned char> descriptor, const CubeTexels& texels, String& error) {
    const Buffer<std::uint32_t> expected = describeTexels(texels);
    const auto differs = [&](std::size_t word, std::uint32_t mask) {
        return ((readWord(descriptor, word) ^ expected[word]) & mask) != 0;
    };
    constexpr std::uint32_t LINEAR_SAMPLE = 0x10000000;
    bool isOther = descriptor.size() < expected.size() * 4 || readWord(descriptor, 0) != descriptor.size() ||
                   differs(1, ~0u) || differs(2, ~0u) || differs(MODEL_WORD, MODEL_MASK);
    for (std::size_t word = BLOCK_WORDS; !isOther && word < expected.size(); word += SAMPLE_WORDS)
        isOther = differs(word, ~LINEAR_SAMPLE);
    if (isOther)
        error = "its descriptor tells of other texels than those of its format.";
    return !isOther;
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
    words[VK_FORMAT] = header.texels.type == HALF ? FORMAT_HALF : FORMAT_FLOAT;
    words[TYPE_SIZE] = componentSize(header.texels);
    words[WIDTH] = header.width;
    words[HEIGHT] = header.height;
    words[FACES] = FACE_COUNT;
    words[LEVELS] = header.mipCount;
    words[DESCRIPTOR_OFFSET] = static_cast<std::uint32_t>(layout.descriptor);
    words[DESCRIPTOR_BYTES] = static_cast<std::uint32_t>(layout.keys - layout.descriptor);
    words[KEYS_OFFSET] = static_cast<std::uint32_t>(layout.keys);
    words[KEYS_BYTES] = static_cast<std::uint32_t>(keysBytes);
    return words;
}

} // namespace

bool isKtx(BufferView<const unsigned char> bytes) {
    return hasIdentifier(bytes);
}

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
    CubeMap read;
    if (!error.empty() || !checkPlaces(bytes, header, layout, error) ||
        !checkDescriptor(bytes.subspan(layout.descriptor, descriptorBytes), header.texels, error) ||
        !checkKeys(bytes.subspan(layout.keys, keysBytes), error) || !allocateCube(header, read, error))
        return false;
    for (unsigned int mip = 0; mip < header.mipCount; ++mip)
        readTexels(bytes.data() + layout.mips[mip], header.texels, read.mips[mip].getBytes());
    cube = std::move(read);
    return true;
}

Buffer<unsigned char> encodeKtx(const CubeMap& cube) {
    CubeFileHeader header;
    if (!cubeHeaderOf(cube, header))
        return {};
    const Buffer<unsigned char> keys = keysOfWriter();
    const Buffer<std::uint32_t> descriptor = describeTexels(header.texels);
    const Layout layout = layOut(header, descriptor.size() * 4, keys.size());
    Buffer<unsigned char> bytes;
    bytes.reserve(layout.size);
    for (const std::uint32_t word : headerWords(header, layout, keys.size()))
        appendWord(bytes, word);
    for (const std::uint32_t word : placesOf(header, layout))
        appendWord(bytes, word);
    for (const std::uint32_t word : descriptor)
        appendWord(bytes, word);
    bytes.insert(bytes.end(), keys.begin(), keys.end());
    for (std::size_t mip = cube.mips.size(); mip-- > 0;) {
        bytes.resize(layout.mips[mip]);
        const BufferView<const unsigned char> texels = cube.mips[mip].getBytes();
        bytes.insert(bytes.end(), texels.begin(), texels.end());
    }
    return bytes;
}

} // namespace ovImages::detail
