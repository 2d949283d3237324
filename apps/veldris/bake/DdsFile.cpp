// The layout is that of "Programming Guide for DDS" and "DDS_HEADER_DXT10" in Microsoft's documentation of
// DDS: 32-bit little-endian words, then face after face, each with its mips from the largest on, rows without
// gaps.
#include <veldris/bake/DdsFile.h>

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
    MAGIC = 0,
    HEADER_SIZE = 1,
    FLAGS = 2,
    HEIGHT = 3,
    WIDTH = 4,
    PITCH = 5,
    MIP_COUNT = 7,
    PIXEL_FORMAT_SIZE = 19,
    PIXEL_FORMAT_FLAGS = 20,
    FOUR_CC = 21,
    CAPS = 27,
    CAPS_2 = 28,
    PLAIN_WORDS = 32, ///< words of a file's header without the extension
    DXGI_FORMAT = 32,
    DIMENSION = 33,
    MISC_FLAG = 34,
    ARRAY_SIZE = 35,
    EXTENDED_WORDS = 37
};

constexpr std::uint32_t MAGIC_DDS = 0x20534444;
constexpr std::uint32_t HEADER_BYTES = 124;
constexpr std::uint32_t PIXEL_FORMAT_BYTES = 32;
constexpr std::uint32_t FLAGS_OF_MIPS = 0x2100f; // caps, height, width, pitch, pixel format, mip count
constexpr std::uint32_t FLAG_FOUR_CC = 0x4;
constexpr std::uint32_t FOUR_CC_DX10 = 0x30315844;
constexpr std::uint32_t FOUR_CC_HALF = 113;
constexpr std::uint32_t FOUR_CC_FLOAT = 116;
constexpr std::uint32_t CAPS_OF_CUBE = 0x401008; // complex, texture, mips
constexpr std::uint32_t CAPS_2_CUBE = 0xfe00;    // cube, with each of the six faces
constexpr std::uint32_t FORMAT_FLOAT = 2;        // DXGI_FORMAT_R32G32B32A32_FLOAT
constexpr std::uint32_t FORMAT_HALF = 10;        // DXGI_FORMAT_R16G16B16A16_FLOAT
constexpr std::uint32_t DIMENSION_2D = 3;
constexpr std::uint32_t MISC_CUBE = 0x4;

struct Header {
    CubeFileHeader cube;
    std::size_t size = PLAIN_WORDS * 4; ///< bytes before the texels
};

bool readExtension(BufferView<const unsigned char> bytes, Header& header, String& error) {
    header.size = EXTENDED_WORDS * 4;
    if (bytes.size() < header.size)
        error = "it ends within its header.";
    else if (readWord(bytes, DIMENSION) != DIMENSION_2D || (readWord(bytes, MISC_FLAG) & MISC_CUBE) == 0 ||
             readWord(bytes, ARRAY_SIZE) != 1)
        error = "it holds no cube, or several; give a file of one cube.";
    else if (const std::uint32_t format = readWord(bytes, DXGI_FORMAT);
             format != FORMAT_HALF && format != FORMAT_FLOAT)
        error = fmt::format("its texels have DXGI format {}; only R32G32B32A32_FLOAT ({}) and "
                            "R16G16B16A16_FLOAT ({}) are read.",
                            format, FORMAT_FLOAT, FORMAT_HALF);
    else
        header.cube.type = format == FORMAT_HALF ? COMPONENT_TYPE::HALF : COMPONENT_TYPE::FLOAT;
    return error.empty();
}

// Older files have the plain header with Direct3D 9's codes, newer ones its extension.
bool readFormat(BufferView<const unsigned char> bytes, Header& header, String& error) {
    const std::uint32_t code = readWord(bytes, FOUR_CC);
    const bool hasCode = (readWord(bytes, PIXEL_FORMAT_FLAGS) & FLAG_FOUR_CC) != 0;
    if (hasCode && code == FOUR_CC_DX10)
        return readExtension(bytes, header, error);
    if (!hasCode || (code != FOUR_CC_HALF && code != FOUR_CC_FLOAT))
        error = "its texels are not four half floats or floats.";
    else if ((readWord(bytes, CAPS_2) & CAPS_2_CUBE) != CAPS_2_CUBE)
        error = "it holds no cube with six faces.";
    header.cube.type = code == FOUR_CC_HALF ? COMPONENT_TYPE::HALF : COMPONENT_TYPE::FLOAT;
    return error.empty();
}

bool readHeader(BufferView<const unsigned char> bytes, Header& header, String& error) {
    if (bytes.size() < header.size || readWord(bytes, MAGIC) != MAGIC_DDS ||
        readWord(bytes, HEADER_SIZE) != HEADER_BYTES ||
        readWord(bytes, PIXEL_FORMAT_SIZE) != PIXEL_FORMAT_BYTES) {
        error = "it is no DDS file.";
        return false;
    }
    if (!readFormat(bytes, header, error))
        return false;
    header.cube.width = readWord(bytes, WIDTH);
    header.cube.height = readWord(bytes, HEIGHT);
    header.cube.mipCount =
        std::max(readWord(bytes, MIP_COUNT), 1u); // some writers leave the count of one out
    return checkCubeHeader(header.cube, error);
}

/// Calls visit(mip, face) in the order of the file.
template <typename Visit>
void visitFaces(unsigned int mipCount, Visit visit) {
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        for (unsigned int mip = 0; mip < mipCount; ++mip)
            visit(mip, face);
    }
}

} // namespace

bool decodeDds(BufferView<const unsigned char> bytes, CubeMap& cube, String& error) {
    error.clear();
    Header header;
    if (!readHeader(bytes, header, error))
        return false;
    const std::uint64_t size = header.size + cubeSize(header.cube);
    // To the byte. A file that is longer than its header says holds something that this reader does not
    // understand, such as an array of cubes.
    if (size != bytes.size()) {
        error = fmt::format("it has {} bytes where its header tells of {}.", bytes.size(), size);
        return false;
    }
    CubeMap read;
    if (!allocateCube(header.cube, read, error))
        return false;
    const unsigned char* at = bytes.data() + header.size;
    visitFaces(header.cube.mipCount, [&](unsigned int mip, unsigned int face) {
        const BufferView<unsigned char> target = faceBytesOf(read.mips[mip], face);
        std::copy_n(at, target.size(), target.data());
        at += target.size();
    });
    cube = std::move(read);
    return true;
}

Buffer<unsigned char> encodeDds(const CubeMap& cube) {
    CubeFileHeader header;
    if (!cubeHeaderOf(cube, header))
        return {};
    const bool isHalf = header.type == COMPONENT_TYPE::HALF;
    std::array<std::uint32_t, EXTENDED_WORDS> words = {};
    words[MAGIC] = MAGIC_DDS;
    words[HEADER_SIZE] = HEADER_BYTES;
    words[FLAGS] = FLAGS_OF_MIPS;
    words[HEIGHT] = header.height;
    words[WIDTH] = header.width;
    words[PITCH] = header.width * (isHalf ? 8 : 16);
    words[MIP_COUNT] = header.mipCount;
    words[PIXEL_FORMAT_SIZE] = PIXEL_FORMAT_BYTES;
    words[PIXEL_FORMAT_FLAGS] = FLAG_FOUR_CC;
    words[FOUR_CC] = FOUR_CC_DX10;
    // For readers that know the plain header only.
    words[CAPS] = CAPS_OF_CUBE;
    words[CAPS_2] = CAPS_2_CUBE;
    words[DXGI_FORMAT] = isHalf ? FORMAT_HALF : FORMAT_FLOAT;
    words[DIMENSION] = DIMENSION_2D;
    words[MISC_FLAG] = MISC_CUBE;
    words[ARRAY_SIZE] = 1;
    Buffer<unsigned char> bytes;
    bytes.reserve(sizeof(words) + cubeSize(header));
    for (const std::uint32_t word : words)
        appendWord(bytes, word);
    visitFaces(header.mipCount, [&](unsigned int mip, unsigned int face) {
        const BufferView<const unsigned char> texels = faceOf(cube.mips[mip], face).bytes;
        bytes.insert(bytes.end(), texels.begin(), texels.end());
    });
    return bytes;
}

} // namespace veldris
