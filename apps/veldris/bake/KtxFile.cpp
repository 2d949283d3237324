// The layout is that of Khronos' "KTX File Format Specification", version 1: words in the writer's byte
// order, then mip after mip, each with the size of a face before its six faces. Texels of 8 and 16 bytes need
// no padding.
#include <veldris/bake/KtxFile.h>

#include <algorithm>
#include <fmt/format.h>
#include <veldris/bake/CubeFileParts.h>

namespace veldris {

using ovImages::COMPONENT_TYPE;
using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;

namespace {

/// Places in the file, in words.
enum WORD : std::size_t {
    IDENTIFIER = 0, ///< three words
    ENDIANNESS = 3,
    GL_TYPE = 4,
    GL_TYPE_SIZE = 5,
    GL_FORMAT = 6,
    GL_INTERNAL_FORMAT = 7,
    GL_BASE_FORMAT = 8,
    WIDTH = 9,
    HEIGHT = 10,
    DEPTH = 11,
    ELEMENTS = 12,
    FACES = 13,
    MIP_COUNT = 14,
    KEY_VALUE_BYTES = 15,
    HEADER_WORDS = 16
};

constexpr std::array<std::uint32_t, 3> IDENTIFIER_WORDS = {0x58544bab, 0xbb313120,
                                                           0x0a1a0a0d}; // "«KTX 11»\r\n\x1a\n"
constexpr std::uint32_t LITTLE_ENDIAN_MARK = 0x04030201;
constexpr std::uint32_t RGBA = 0x1908; // GL_RGBA

/// OpenGL's numbers for a type of components.
struct GlNames {
    COMPONENT_TYPE component;
    std::uint32_t type;
    std::uint32_t size;
    std::uint32_t internalFormat;
};

constexpr GlNames HALF_NAMES = {COMPONENT_TYPE::HALF, 0x140b, 2, 0x881a};   // GL_HALF_FLOAT, GL_RGBA16F
constexpr GlNames FLOAT_NAMES = {COMPONENT_TYPE::FLOAT, 0x1406, 4, 0x8814}; // GL_FLOAT, GL_RGBA32F

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
        error = "it is no KTX file of version 1.";
        return false;
    }
    const std::uint32_t format = readWord(bytes, GL_INTERNAL_FORMAT);
    const GlNames& names = format == HALF_NAMES.internalFormat ? HALF_NAMES : FLOAT_NAMES;
    if (readWord(bytes, ENDIANNESS) != LITTLE_ENDIAN_MARK)
        error = "it was written with the most significant bytes first.";
    else if (readWord(bytes, FACES) != FACE_COUNT || readWord(bytes, ELEMENTS) > 0 ||
             readWord(bytes, DEPTH) > 0)
        error = "it holds no cube, or several; give a file of one cube.";
    else if (format != names.internalFormat || readWord(bytes, GL_TYPE) != names.type ||
             readWord(bytes, GL_FORMAT) != RGBA)
        error = fmt::format(
            "its texels have OpenGL's format {:#x}; only GL_RGBA32F ({:#x}) and GL_RGBA16F ({:#x}) "
            "of the same type are read.",
            format, FLOAT_NAMES.internalFormat, HALF_NAMES.internalFormat);
    if (!error.empty())
        return false;
    // A count of 0 asks the reader to make the mips.
    header = {readWord(bytes, WIDTH), readWord(bytes, HEIGHT), std::max(readWord(bytes, MIP_COUNT), 1u),
              names.component};
    return checkCubeHeader(header, error);
}

bool readMips(BufferView<const unsigned char> bytes, std::size_t start, CubeMap& cube, String& error) {
    std::size_t at = start;
    for (ovImages::Image& mip : cube.mips) {
        const BufferView<unsigned char> target = mip.getBytes();
        const std::uint32_t faceSize = readWord(bytes.subspan(at), 0);
        if (faceSize != target.size() / FACE_COUNT) {
            error = fmt::format("a face of {} texels a side has {} bytes instead of {}.", mip.getWidth(),
                                faceSize, target.size() / FACE_COUNT);
            return false;
        }
        at += 4;
        std::copy_n(bytes.data() + at, target.size(), target.data());
        at += target.size();
    }
    return true;
}

} // namespace

bool decodeKtx(BufferView<const unsigned char> bytes, CubeMap& cube, String& error) {
    error.clear();
    CubeFileHeader header;
    if (!readHeader(bytes, header, error))
        return false;
    const std::uint64_t start = HEADER_WORDS * 4 + std::uint64_t(readWord(bytes, KEY_VALUE_BYTES));
    const std::uint64_t size = start + header.mipCount * 4 + cubeSize(header);
    if (size != bytes.size()) {
        error = fmt::format("it has {} bytes where its header tells of {}.", bytes.size(), size);
        return false;
    }
    CubeMap read;
    if (!allocateCube(header, read, error) || !readMips(bytes, start, read, error))
        return false;
    cube = std::move(read);
    return true;
}

Buffer<unsigned char> encodeKtx(const CubeMap& cube) {
    CubeFileHeader header;
    if (!cubeHeaderOf(cube, header))
        return {};
    const GlNames& names = header.type == COMPONENT_TYPE::HALF ? HALF_NAMES : FLOAT_NAMES;
    std::array<std::uint32_t, HEADER_WORDS> words = {};
    std::ranges::copy(IDENTIFIER_WORDS, words.begin());
    words[ENDIANNESS] = LITTLE_ENDIAN_MARK;
    words[GL_TYPE] = names.type;
    words[GL_TYPE_SIZE] = names.size;
    words[GL_FORMAT] = RGBA;
    words[GL_INTERNAL_FORMAT] = names.internalFormat;
    words[GL_BASE_FORMAT] = RGBA;
    words[WIDTH] = header.width;
    words[HEIGHT] = header.height;
    words[FACES] = FACE_COUNT;
    words[MIP_COUNT] = header.mipCount;
    Buffer<unsigned char> bytes;
    bytes.reserve(sizeof(words) + header.mipCount * 4 + cubeSize(header));
    for (const std::uint32_t word : words)
        appendWord(bytes, word);
    for (unsigned int mip = 0; mip < header.mipCount; ++mip) {
        appendWord(bytes, static_cast<std::uint32_t>(cubeFaceSize(header, mip)));
        const BufferView<const unsigned char> texels = cube.mips[mip].getBytes();
        bytes.insert(bytes.end(), texels.begin(), texels.end());
    }
    return bytes;
}

} // namespace veldris
