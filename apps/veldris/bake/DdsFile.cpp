// The layout is that of "Programming Guide for DDS" and "DDS_HEADER_DXT10" in Microsoft's documentation of
// DDS: 32-bit little-endian words, then face after face, each with its mips from the largest on, rows without
// gaps.
#include <veldris/bake/DdsFile.h>

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

namespace veldris {

using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;

namespace {

constexpr unsigned int CHANNELS = 4;
constexpr std::uint32_t MAX_SIDE = 16384; // what Direct3D allows

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

std::uint32_t readWord(BufferView<const unsigned char> bytes, std::size_t word) {
    const unsigned char* at = bytes.data() + word * 4;
    return at[0] | std::uint32_t(at[1]) << 8 | std::uint32_t(at[2]) << 16 | std::uint32_t(at[3]) << 24;
}

void writeWord(BufferView<unsigned char> bytes, std::size_t word, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[word * 4 + i] = static_cast<unsigned char>(value >> 8 * i);
}

unsigned int fullMipCount(std::uint32_t side) {
    unsigned int count = 0;
    for (; side > 0; side >>= 1)
        ++count;
    return count;
}

unsigned int sideOf(std::uint32_t side, unsigned int mip) {
    return std::max(side >> mip, 1u);
}

std::uint64_t faceSize(std::uint32_t side, unsigned int mip, COMPONENT_TYPE type) {
    const std::uint64_t texels = std::uint64_t(sideOf(side, mip)) * sideOf(side, mip);
    return texels * CHANNELS * ovImages::getComponentSize(type);
}

struct Header {
    std::uint32_t side = 0;
    std::uint32_t mipCount = 0;
    COMPONENT_TYPE type = COMPONENT_TYPE::HALF;
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
        header.type = format == FORMAT_HALF ? COMPONENT_TYPE::HALF : COMPONENT_TYPE::FLOAT;
    return error.empty();
}

bool readFormat(BufferView<const unsigned char> bytes, Header& header, String& error) {
    const std::uint32_t code = readWord(bytes, FOUR_CC);
    const bool hasCode = (readWord(bytes, PIXEL_FORMAT_FLAGS) & FLAG_FOUR_CC) != 0;
    if (hasCode && code == FOUR_CC_DX10)
        return readExtension(bytes, header, error);
    if (!hasCode || (code != FOUR_CC_HALF && code != FOUR_CC_FLOAT))
        error = "its texels are not four half floats or floats.";
    else if ((readWord(bytes, CAPS_2) & CAPS_2_CUBE) != CAPS_2_CUBE)
        error = "it holds no cube with six faces.";
    header.type = code == FOUR_CC_HALF ? COMPONENT_TYPE::HALF : COMPONENT_TYPE::FLOAT;
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
    header.side = readWord(bytes, WIDTH);
    header.mipCount = std::max(readWord(bytes, MIP_COUNT), 1u);
    if (header.side != readWord(bytes, HEIGHT) || header.side == 0 || header.side > MAX_SIDE)
        error = fmt::format("its faces have {} x {} texels; they must be square, with 1 to {} a side.",
                            header.side, readWord(bytes, HEIGHT), MAX_SIDE);
    else if (header.mipCount > fullMipCount(header.side))
        error = fmt::format("it tells of {} mips, more than the {} of {} texels a side.", header.mipCount,
                            fullMipCount(header.side), header.side);
    return error.empty();
}

/// Calls visit(mip, face) in the order of the file.
template <typename Visit>
void visitFaces(unsigned int mipCount, Visit visit) {
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        for (unsigned int mip = 0; mip < mipCount; ++mip)
            visit(mip, face);
    }
}

bool canEncode(const CubeMap& cube) {
    if (cube.mips.empty() || cube.mips.size() > fullMipCount(cube.getSide()))
        return false;
    const COMPONENT_TYPE type = cube.mips.front().getComponentType();
    if (type != COMPONENT_TYPE::HALF && type != COMPONENT_TYPE::FLOAT)
        return false;
    for (unsigned int mip = 0; mip < cube.mips.size(); ++mip) {
        const Image& image = cube.mips[mip];
        const unsigned int side = sideOf(cube.getSide(), mip);
        if (image.getComponentType() != type || image.getChannels() != CHANNELS || image.getWidth() != side ||
            image.getHeight() != side * FACE_COUNT)
            return false;
    }
    return true;
}

} // namespace

bool decodeDds(BufferView<const unsigned char> bytes, CubeMap& cube, String& error) {
    error.clear();
    Header header;
    if (!readHeader(bytes, header, error))
        return false;
    std::uint64_t size = header.size;
    for (unsigned int mip = 0; mip < header.mipCount; ++mip)
        size += FACE_COUNT * faceSize(header.side, mip, header.type);
    if (size != bytes.size()) {
        error = fmt::format("it has {} bytes where its header tells of {}.", bytes.size(), size);
        return false;
    }
    CubeMap read;
    for (unsigned int mip = 0; mip < header.mipCount; ++mip) {
        const unsigned int side = sideOf(header.side, mip);
        read.mips.emplace_back(side, side * FACE_COUNT, CHANNELS, header.type,
                               ovImages::COLOUR_ENCODING::LINEAR);
        if (read.mips.back().isEmpty()) {
            error = fmt::format("faces of {} texels a side need more memory than there is.", side);
            return false;
        }
    }
    const unsigned char* at = bytes.data() + header.size;
    visitFaces(header.mipCount, [&](unsigned int mip, unsigned int face) {
        const BufferView<unsigned char> target = faceBytesOf(read.mips[mip], face);
        std::copy_n(at, target.size(), target.data());
        at += target.size();
    });
    cube = std::move(read);
    return true;
}

Buffer<unsigned char> encodeDds(const CubeMap& cube) {
    if (!canEncode(cube))
        return {};
    const auto mipCount = static_cast<unsigned int>(cube.mips.size());
    const COMPONENT_TYPE type = cube.mips.front().getComponentType();
    const auto pitch =
        static_cast<std::uint32_t>(cube.getSide() * CHANNELS * ovImages::getComponentSize(type));
    const std::pair<WORD, std::uint32_t> words[] = {
        {MAGIC, MAGIC_DDS},
        {HEADER_SIZE, HEADER_BYTES},
        {FLAGS, FLAGS_OF_MIPS},
        {HEIGHT, cube.getSide()},
        {WIDTH, cube.getSide()},
        {PITCH, pitch},
        {MIP_COUNT, mipCount},
        {PIXEL_FORMAT_SIZE, PIXEL_FORMAT_BYTES},
        {PIXEL_FORMAT_FLAGS, FLAG_FOUR_CC},
        {FOUR_CC, FOUR_CC_DX10},
        {CAPS, CAPS_OF_CUBE},
        {CAPS_2, CAPS_2_CUBE},
        {DXGI_FORMAT, type == COMPONENT_TYPE::HALF ? FORMAT_HALF : FORMAT_FLOAT},
        {DIMENSION, DIMENSION_2D},
        {MISC_FLAG, MISC_CUBE},
        {ARRAY_SIZE, 1},
    };
    Buffer<unsigned char> bytes(EXTENDED_WORDS * 4);
    for (const auto& [word, value] : words)
        writeWord(bytes, word, value);
    visitFaces(mipCount, [&](unsigned int mip, unsigned int face) {
        const BufferView<const unsigned char> texels = faceOf(cube.mips[mip], face).bytes;
        bytes.insert(bytes.end(), texels.begin(), texels.end());
    });
    return bytes;
}

} // namespace veldris
