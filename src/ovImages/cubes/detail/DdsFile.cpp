// The layout is that of "Programming Guide for DDS" and "DDS_HEADER_DXT10" in Microsoft's documentation of
// DDS: 32-bit little-endian words, then face after face, each with its mips from the largest on, rows without
// gaps.
#include <ovImages/cubes/detail/DdsFile.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovImages/cubes/detail/CubeFileParts.h>

namespace ovImages::detail {

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
    BITS = 22,
    RED_MASK = 23, ///< then green, blue and alpha
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
constexpr std::uint32_t FLAG_ALPHA = 0x1;
constexpr std::uint32_t FLAG_FOUR_CC = 0x4;
constexpr std::uint32_t FLAG_RGB = 0x40;
constexpr std::uint32_t FLAG_LUMINANCE = 0x20000;
constexpr std::uint32_t FOUR_CC_DX10 = 0x30315844;
constexpr std::uint32_t CAPS_OF_CUBE = 0x401008; // complex, texture, mips
constexpr std::uint32_t CAPS_2_CUBE = 0xfe00;    // cube, with each of the six faces
constexpr std::uint32_t FORMAT_FLOAT = 2;        // DXGI_FORMAT_R32G32B32A32_FLOAT
constexpr std::uint32_t FORMAT_HALF = 10;        // DXGI_FORMAT_R16G16B16A16_FLOAT
constexpr std::uint32_t DIMENSION_2D = 3;
constexpr std::uint32_t MISC_CUBE = 0x4;

using enum COMPONENT_TYPE;
constexpr COLOR_ENCODING LINEAR = COLOR_ENCODING::LINEAR;
constexpr COLOR_ENCODING SRGB = COLOR_ENCODING::SRGB;
constexpr bool OPAQUE = true;

// DXGI_FORMAT: R32G32B32A32_FLOAT, and so on by name.
constexpr CubeFormat DXGI_FORMATS[] = {{FORMAT_FLOAT, texelsInOrder(FLOAT, 4)},
                                       {6, texelsInOrder(FLOAT, 3)},
                                       {FORMAT_HALF, texelsInOrder(HALF, 4)},
                                       {16, texelsInOrder(FLOAT, 2)},
                                       {28, texelsInOrder(UINT8, 4)},
                                       {29, texelsInOrder(UINT8, 4, SRGB)},
                                       {34, texelsInOrder(HALF, 2)},
                                       {41, texelsInOrder(FLOAT, 1)},
                                       {49, texelsInOrder(UINT8, 2)},
                                       {54, texelsInOrder(HALF, 1)},
                                       {61, texelsInOrder(UINT8, 1)},
                                       {87, texelsBlueFirst(4, LINEAR)},
                                       {88, texelsBlueFirst(4, LINEAR, OPAQUE)},
                                       {91, texelsBlueFirst(4, SRGB)},
                                       {93, texelsBlueFirst(4, SRGB, OPAQUE)}};

// Direct3D 9: R16F, G16R16F, A16B16G16R16F, R32F, G32R32F, A32B32G32R32F.
constexpr CubeFormat OLD_FORMATS[] = {{111, texelsInOrder(HALF, 1)},  {112, texelsInOrder(HALF, 2)},
                                      {113, texelsInOrder(HALF, 4)},  {114, texelsInOrder(FLOAT, 1)},
                                      {115, texelsInOrder(FLOAT, 2)}, {116, texelsInOrder(FLOAT, 4)}};

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
    else if (!findTexels(DXGI_FORMATS, readWord(bytes, DXGI_FORMAT), header.cube.texels))
        error = fmt::format("its texels have DXGI format {}; only floats, half floats and 8 bits are read.",
                            readWord(bytes, DXGI_FORMAT));
    return error.empty();
}

/// The oldest form: bits of a texel, told by masks. @return false for what are no bytes of one component each
bool readMasks(BufferView<const unsigned char> bytes, CubeTexels& texels) {
    const std::uint32_t flags = readWord(bytes, PIXEL_FORMAT_FLAGS);
    const std::uint32_t bits = readWord(bytes, BITS);
    std::array<std::uint32_t, 4> masks = {};
    for (std::size_t i = 0; i < masks.size(); ++i)
        masks[i] = readWord(bytes, RED_MASK + i);
    const bool hasAlpha = (flags & FLAG_ALPHA) != 0;
    using Colors = std::array<std::uint32_t, 3>;
    const Colors colors = {masks[0], masks[1], masks[2]};
    const bool isAlphaLast = !hasAlpha || masks[3] == 0xff000000;
    if ((flags & FLAG_RGB) != 0 && (bits == 24 || (bits == 32 && isAlphaLast))) {
        const bool isOpaque = bits == 32 && !hasAlpha;
        texels = texelsBlueFirst(bits / 8, SRGB, isOpaque);
        if (colors == Colors{0xff, 0xff00, 0xff0000})
            std::swap(texels.from[0], texels.from[2]);
        else if (colors != Colors{0xff0000, 0xff00, 0xff})
            return false;
        return true;
    }
    if ((flags & FLAG_LUMINANCE) == 0 || masks[0] != 0xff || bits != (hasAlpha ? 16 : 8) ||
        (hasAlpha && masks[3] != 0xff00))
        return false;
    texels = {UINT8, SRGB, bits / 8, bits / 8, {0, 1, 0, 0}};
    return true;
}

// Older files have the plain header with Direct3D 9's codes or masks, newer ones its extension.
bool readFormat(BufferView<const unsigned char> bytes, Header& header, String& error) {
    const std::uint32_t code = readWord(bytes, FOUR_CC);
    const bool hasCode = (readWord(bytes, PIXEL_FORMAT_FLAGS) & FLAG_FOUR_CC) != 0;
    if (hasCode && code == FOUR_CC_DX10)
        return readExtension(bytes, header, error);
    const bool isKnown =
        hasCode ? findTexels(OLD_FORMATS, code, header.cube.texels) : readMasks(bytes, header.cube.texels);
    if (!isKnown)
        error = "its texels are no floats, half floats or 8 bits.";
    else if ((readWord(bytes, CAPS_2) & CAPS_2_CUBE) != CAPS_2_CUBE)
        error = "it holds no cube with six faces.";
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

bool isDds(BufferView<const unsigned char> bytes) {
    return bytes.size() >= 4 && readWord(bytes, MAGIC) == MAGIC_DDS;
}

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
        readTexels(at, header.cube.texels, faceBytesOf(read.mips[mip], face));
        at += cubeFaceSize(header.cube, mip);
    });
    cube = std::move(read);
    return true;
}

Buffer<unsigned char> encodeDds(const CubeMap& cube) {
    CubeFileHeader header;
    if (!cubeHeaderOf(cube, header))
        return {};
    const bool isHalf = header.texels.type == COMPONENT_TYPE::HALF;
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

} // namespace ovImages::detail
