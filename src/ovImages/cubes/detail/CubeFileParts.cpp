#include <ovImages/cubes/detail/CubeFileParts.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <fmt/format.h>

namespace ovImages::detail {

using ovMemory::Buffer;
using ovMemory::BufferView;
using ovMemory::String;

namespace {

constexpr std::uint32_t MAX_SIDE = 16384; // what Direct3D allows
constexpr unsigned int WRITTEN_CHANNELS = 4;

unsigned int sideOf(std::uint32_t side, unsigned int mip) {
    return std::max(side >> mip, 1u);
}

} // namespace

// Byte by byte: both formats are little-endian, and a file's bytes have no alignment.
bool findTexels(BufferView<const CubeFormat> formats, std::uint32_t code, CubeTexels& texels) {
    const auto found = std::ranges::find(formats, code, &CubeFormat::code);
    if (found == formats.end())
        return false;
    texels = found->texels;
    return true;
}

std::uint32_t readWord(BufferView<const unsigned char> bytes, std::size_t word) {
    const unsigned char* at = bytes.data() + word * 4;
    return at[0] | std::uint32_t(at[1]) << 8 | std::uint32_t(at[2]) << 16 | std::uint32_t(at[3]) << 24;
}

void appendWord(Buffer<unsigned char>& bytes, std::uint32_t value) {
    for (unsigned int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<unsigned char>(value >> shift));
}

std::uint32_t cubeTexelSize(const CubeTexels& texels) {
    return texels.stored * static_cast<std::uint32_t>(getComponentSize(texels.type));
}

std::uint64_t cubeFaceSize(const CubeFileHeader& header, unsigned int mip) {
    const std::uint64_t side = sideOf(header.width, mip);
    return side * side * cubeTexelSize(header.texels);
}

std::uint64_t cubeSize(const CubeFileHeader& header) {
    std::uint64_t size = 0;
    for (unsigned int mip = 0; mip < header.mipCount; ++mip)
        size += FACE_COUNT * cubeFaceSize(header, mip);
    return size;
}

// Before anything is allocated, as every number comes from the file.
bool checkCubeHeader(const CubeFileHeader& header, String& error) {
    const auto fullCount = static_cast<std::uint32_t>(std::bit_width(header.width));
    if (header.width != header.height || header.width == 0 || header.width > MAX_SIDE)
        error = fmt::format("its faces have {} x {} texels; they must be square, with 1 to {} a side.",
                            header.width, header.height, MAX_SIDE);
    else if (header.mipCount == 0 || header.mipCount > fullCount)
        error = fmt::format("it tells of {} mips; {} texels a side have 1 to {}.", header.mipCount,
                            header.width, fullCount);
    return error.empty();
}

bool allocateCube(const CubeFileHeader& header, CubeMap& cube, String& error) {
    cube.mips.clear();
    for (unsigned int mip = 0; mip < header.mipCount; ++mip) {
        const unsigned int side = sideOf(header.width, mip);
        cube.mips.emplace_back(side, side * FACE_COUNT, header.texels.channels, header.texels.type,
                               header.texels.encoding);
        if (cube.mips.back().isEmpty()) {
            error = fmt::format("faces of {} texels a side need more memory than there is.", side);
            return false;
        }
    }
    return true;
}

void readTexels(const unsigned char* source, const CubeTexels& texels, BufferView<unsigned char> target) {
    constexpr float ONE = 1.0f;
    constexpr std::uint16_t HALF_ONE = 0x3c00;
    const std::size_t size = getComponentSize(texels.type);
    // What is stored, and behind it what the map may ask for instead.
    std::array<unsigned char, 6 * sizeof(float)> texel = {};
    unsigned char* const one = texel.data() + CubeTexels::ONE * size;
    if (texels.type == COMPONENT_TYPE::UINT8)
        *one = 255;
    else if (texels.type == COMPONENT_TYPE::HALF)
        std::memcpy(one, &HALF_ONE, size);
    else
        std::memcpy(one, &ONE, size);
    for (unsigned char* to = target.data(); to != target.data() + target.size();) {
        std::copy_n(source, texels.stored * size, texel.data());
        source += texels.stored * size;
        for (unsigned int i = 0; i < texels.channels; ++i)
            to = std::copy_n(texel.data() + texels.from[i] * size, size, to);
    }
}

bool cubeHeaderOf(const CubeMap& cube, CubeFileHeader& header) {
    if (cube.mips.empty())
        return false;
    const COMPONENT_TYPE type = cube.mips.front().getComponentType();
    header = {cube.getSide(), cube.getSide(), static_cast<std::uint32_t>(cube.mips.size()),
              texelsInOrder(type, WRITTEN_CHANNELS)};
    String ignored;
    if ((type != COMPONENT_TYPE::HALF && type != COMPONENT_TYPE::FLOAT) || !checkCubeHeader(header, ignored))
        return false;
    for (unsigned int mip = 0; mip < cube.mips.size(); ++mip) {
        const Image& image = cube.mips[mip];
        const unsigned int side = sideOf(cube.getSide(), mip);
        if (image.getComponentType() != type || image.getChannels() != WRITTEN_CHANNELS ||
            image.getWidth() != side || image.getHeight() != side * FACE_COUNT)
            return false;
    }
    return true;
}

} // namespace ovImages::detail
