#include <ovGraphics/formats/TextureUtils.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace ovGraphics {

namespace {

using COMPONENT = FORMAT_COMPONENT;

enum FORMAT_FLAG : unsigned int {
    COMPRESSED = 1,
    SRGB = 2,
    ALPHA = 4,
    OVER_255 = 8,
    DEPTH = 16,
    SAMPLED = 32,   // OpenGL has an equal
    RENDERABLE = 64 // OpenGL 4.5 requires it to be colour-renderable (section 8.5.1 of its text)
};

// A relative that is missing is the format itself: callers ask without a check and get something that they
// can use.
constexpr FORMAT SAME = FORMAT::UNKNOWN;

// One table of all that is known of a format. The alternative, a switch in each function, has a hundred cases
// in each and hides a forgotten one.
struct FormatInfo {
    uint8_t channels;
    uint8_t blockSize;
    uint8_t blockWidth;
    uint8_t blockHeight;
    COMPONENT component;
    unsigned int flags;
    FORMAT srgb;
    FORMAT withAlpha;
    FORMAT uncompressed;
};

// One row a format, in the order of the enumeration's numbers.
// clang-format off
constexpr std::array FORMATS = {
    FormatInfo{0, 0, 1, 1, COMPONENT::NONE, 0, SAME, SAME, SAME},
    FormatInfo{4, 16, 1, 1, COMPONENT::FLOAT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 16, 1, 1, COMPONENT::FLOAT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 16, 1, 1, COMPONENT::UINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 16, 1, 1, COMPONENT::SINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{3, 12, 1, 1, COMPONENT::FLOAT, SAMPLED, SAME, FORMAT::R32G32B32A32_TYPELESS, SAME},
    FormatInfo{3, 12, 1, 1, COMPONENT::FLOAT, SAMPLED, SAME, FORMAT::R32G32B32A32_FLOAT, SAME},
    FormatInfo{3, 12, 1, 1, COMPONENT::UINT, SAMPLED, SAME, FORMAT::R32G32B32A32_UINT, SAME},
    FormatInfo{3, 12, 1, 1, COMPONENT::SINT, SAMPLED, SAME, FORMAT::R32G32B32A32_SINT, SAME},
    FormatInfo{4, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 8, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 8, 1, 1, COMPONENT::UINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 8, 1, 1, COMPONENT::SNORM, SAMPLED | ALPHA, SAME, SAME, SAME},
    FormatInfo{4, 8, 1, 1, COMPONENT::SINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{2, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_TYPELESS, SAME},
    FormatInfo{2, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_FLOAT, SAME},
    FormatInfo{2, 8, 1, 1, COMPONENT::UINT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_UINT, SAME},
    FormatInfo{2, 8, 1, 1, COMPONENT::SINT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_SINT, SAME},
    FormatInfo{2, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{2, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{1, 8, 1, 1, COMPONENT::FLOAT, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{1, 8, 1, 1, COMPONENT::UINT, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{3, 4, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_FLOAT, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255 | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255 | RENDERABLE, FORMAT::R8G8B8A8_UNORM_SRGB, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255 | SRGB | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::SNORM, SAMPLED | ALPHA, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::SINT, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_TYPELESS, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_FLOAT, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::UNORM, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_UNORM, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::UINT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_UINT, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::SNORM, SAMPLED, SAME, FORMAT::R16G16B16A16_SNORM, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::SINT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_SINT, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_TYPELESS, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::FLOAT, SAMPLED | DEPTH, SAME, FORMAT::R32G32B32A32_FLOAT, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_FLOAT, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::UINT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_UINT, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::SINT, SAMPLED | RENDERABLE, SAME, FORMAT::R32G32B32A32_SINT, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::UNORM, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{2, 4, 1, 1, COMPONENT::UNORM, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::UNORM, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{1, 4, 1, 1, COMPONENT::UINT, SAMPLED | DEPTH, SAME, SAME, SAME},
    FormatInfo{2, 2, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | RENDERABLE, SAME, FORMAT::R8G8B8A8_TYPELESS, SAME},
    FormatInfo{2, 2, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | RENDERABLE, SAME, FORMAT::R8G8B8A8_UNORM, SAME},
    FormatInfo{2, 2, 1, 1, COMPONENT::UINT, SAMPLED | RENDERABLE, SAME, FORMAT::R8G8B8A8_UINT, SAME},
    FormatInfo{2, 2, 1, 1, COMPONENT::SNORM, SAMPLED, SAME, FORMAT::R8G8B8A8_SNORM, SAME},
    FormatInfo{2, 2, 1, 1, COMPONENT::SINT, SAMPLED | RENDERABLE, SAME, FORMAT::R8G8B8A8_SINT, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_TYPELESS, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::FLOAT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_FLOAT, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::UNORM, SAMPLED | DEPTH, SAME, FORMAT::R16G16B16A16_UNORM, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::UNORM, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_UNORM, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::UINT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_UINT, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::SNORM, SAMPLED, SAME, FORMAT::R16G16B16A16_SNORM, SAME},
    FormatInfo{1, 2, 1, 1, COMPONENT::SINT, SAMPLED | RENDERABLE, SAME, FORMAT::R16G16B16A16_SINT, SAME},
    FormatInfo{1, 1, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | RENDERABLE, SAME, FORMAT::R8G8B8A8_TYPELESS, SAME},
    FormatInfo{1, 1, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | RENDERABLE, SAME, FORMAT::R8G8B8A8_UNORM, SAME},
    FormatInfo{1, 1, 1, 1, COMPONENT::UINT, SAMPLED | RENDERABLE, SAME, FORMAT::R8G8B8A8_UINT, SAME},
    FormatInfo{1, 1, 1, 1, COMPONENT::SNORM, SAMPLED, SAME, FORMAT::R8G8B8A8_SNORM, SAME},
    FormatInfo{1, 1, 1, 1, COMPONENT::SINT, SAMPLED | RENDERABLE, SAME, FORMAT::R8G8B8A8_SINT, SAME},
    FormatInfo{1, 1, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255, SAME, SAME, SAME},
    FormatInfo{1, 1, 8, 1, COMPONENT::UNORM, 0, SAME, FORMAT::R8G8B8A8_UNORM, SAME},
    FormatInfo{3, 4, 1, 1, COMPONENT::FLOAT, SAMPLED, SAME, FORMAT::R16G16B16A16_FLOAT, SAME},
    FormatInfo{3, 4, 2, 1, COMPONENT::UNORM, OVER_255, SAME, FORMAT::R8G8B8A8_UNORM, SAME},
    FormatInfo{3, 4, 2, 1, COMPONENT::UNORM, OVER_255, SAME, FORMAT::R8G8B8A8_UNORM, SAME},
    FormatInfo{4, 8, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, SAME, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 8, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, FORMAT::BC1_UNORM_SRGB, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 8, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED | SRGB, SAME, SAME, FORMAT::R8G8B8A8_UNORM_SRGB},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, SAME, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, FORMAT::BC2_UNORM_SRGB, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED | SRGB, SAME, SAME, FORMAT::R8G8B8A8_UNORM_SRGB},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, SAME, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, FORMAT::BC3_UNORM_SRGB, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED | SRGB, SAME, SAME, FORMAT::R8G8B8A8_UNORM_SRGB},
    FormatInfo{1, 8, 4, 4, COMPONENT::UNORM, COMPRESSED | SAMPLED, SAME, FORMAT::R8G8B8A8_UNORM, FORMAT::R8_UNORM},
    FormatInfo{1, 8, 4, 4, COMPONENT::UNORM, COMPRESSED | SAMPLED, SAME, FORMAT::R8G8B8A8_UNORM, FORMAT::R8_UNORM},
    FormatInfo{1, 8, 4, 4, COMPONENT::SNORM, COMPRESSED | SAMPLED, SAME, FORMAT::R8G8B8A8_SNORM, FORMAT::R8_SNORM},
    FormatInfo{2, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | SAMPLED, SAME, FORMAT::R8G8B8A8_UNORM, FORMAT::R8G8_UNORM},
    FormatInfo{2, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | SAMPLED, SAME, FORMAT::R8G8B8A8_UNORM, FORMAT::R8G8_UNORM},
    FormatInfo{2, 16, 4, 4, COMPONENT::SNORM, COMPRESSED | SAMPLED, SAME, FORMAT::R8G8B8A8_SNORM, FORMAT::R8G8_SNORM},
    FormatInfo{3, 2, 1, 1, COMPONENT::UNORM, SAMPLED | RENDERABLE, SAME, FORMAT::R8G8B8A8_UNORM, SAME},
    FormatInfo{4, 2, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255 | RENDERABLE, FORMAT::B8G8R8A8_UNORM_SRGB, SAME, SAME},
    FormatInfo{3, 4, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | RENDERABLE, FORMAT::B8G8R8X8_UNORM_SRGB, FORMAT::B8G8R8A8_UNORM, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, ALPHA, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255 | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{4, 4, 1, 1, COMPONENT::UNORM, SAMPLED | ALPHA | OVER_255 | SRGB | RENDERABLE, SAME, SAME, SAME},
    FormatInfo{3, 4, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | RENDERABLE, SAME, FORMAT::B8G8R8A8_TYPELESS, SAME},
    FormatInfo{3, 4, 1, 1, COMPONENT::UNORM, SAMPLED | OVER_255 | SRGB | RENDERABLE, SAME, FORMAT::B8G8R8A8_UNORM_SRGB, SAME},
    FormatInfo{3, 16, 4, 4, COMPONENT::FLOAT, COMPRESSED | SAMPLED, SAME, FORMAT::R16G16B16A16_FLOAT, FORMAT::R16G16B16A16_FLOAT},
    FormatInfo{3, 16, 4, 4, COMPONENT::FLOAT, COMPRESSED | SAMPLED, SAME, FORMAT::R16G16B16A16_FLOAT, FORMAT::R16G16B16A16_FLOAT},
    FormatInfo{3, 16, 4, 4, COMPONENT::FLOAT, COMPRESSED | SAMPLED, SAME, FORMAT::R16G16B16A16_FLOAT, FORMAT::R16G16B16A16_FLOAT},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, SAME, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED, FORMAT::BC7_UNORM_SRGB, SAME, FORMAT::R8G8B8A8_UNORM},
    FormatInfo{4, 16, 4, 4, COMPONENT::UNORM, COMPRESSED | ALPHA | SAMPLED | SRGB, SAME, SAME, FORMAT::R8G8B8A8_UNORM_SRGB},
};
// clang-format on
static_assert(FORMATS.size() == static_cast<std::size_t>(FORMAT::BC7_UNORM_SRGB) + 1);

// Numbers come from files and scripts too, so one outside the list is UNKNOWN and no overrun.
const FormatInfo& infoOf(FORMAT format) {
    const std::size_t index = static_cast<std::size_t>(format);
    return FORMATS[index < FORMATS.size() ? index : 0];
}

bool has(FORMAT format, unsigned int flag) {
    return (infoOf(format).flags & flag) != 0;
}

FORMAT relative(FORMAT format, FORMAT FormatInfo::*which) {
    const FORMAT other = infoOf(format).*which;
    return other == SAME ? format : other;
}

} // namespace

ovMemory::StringView TextureUtils::getFormatName(FORMAT format) {
    return ovMemory::enumToText(format, "UNKNOWN");
}

unsigned int TextureUtils::getFormatChannelCount(FORMAT format) {
    return infoOf(format).channels;
}

FORMAT_COMPONENT TextureUtils::getFormatComponent(FORMAT format) {
    return infoOf(format).component;
}

unsigned int TextureUtils::getFormatBlockSize(FORMAT format) {
    return infoOf(format).blockSize;
}

unsigned int TextureUtils::getFormatBlockWidth(FORMAT format) {
    return infoOf(format).blockWidth;
}

unsigned int TextureUtils::getFormatBlockHeight(FORMAT format) {
    return infoOf(format).blockHeight;
}

bool TextureUtils::isFormatCompressed(FORMAT format) {
    return has(format, COMPRESSED);
}

bool TextureUtils::isFormatSrgb(FORMAT format) {
    return has(format, SRGB);
}

bool TextureUtils::isFormatDepth(FORMAT format) {
    return has(format, DEPTH);
}

bool TextureUtils::isFormatOver255(FORMAT format) {
    return has(format, OVER_255);
}

FORMAT TextureUtils::getFormatSrgbEquivalent(FORMAT format) {
    return relative(format, &FormatInfo::srgb);
}

FORMAT TextureUtils::getFormatWithAlphaEquivalent(FORMAT format) {
    return relative(format, &FormatInfo::withAlpha);
}

FORMAT TextureUtils::getFormatUncompressedEquivalent(FORMAT format) {
    return relative(format, &FormatInfo::uncompressed);
}

std::size_t TextureUtils::getRowPitch(FORMAT format, unsigned int width) {
    const FormatInfo& info = infoOf(format);
    return (std::size_t{width} + info.blockWidth - 1) / info.blockWidth * info.blockSize;
}

unsigned int TextureUtils::getRowCount(FORMAT format, unsigned int height) {
    const std::size_t blockHeight = infoOf(format).blockHeight;
    return static_cast<unsigned int>((height + blockHeight - 1) / blockHeight);
}

std::size_t TextureUtils::getSliceSize(FORMAT format, unsigned int width, unsigned int height) {
    return getRowPitch(format, width) * getRowCount(format, height);
}

unsigned int TextureUtils::getNeededMipsForSize(unsigned int width, unsigned int height) {
    if (width == 0 || height == 0)
        return 0;
    // A chain halves, rounded down, until both sides are 1: as often as the longer side has bits.
    return static_cast<unsigned int>(std::bit_width(std::max(width, height)));
}

// What every device promises and not what this one can do: answers must not depend on the machine, as files
// and scripts may keep them.
bool TextureUtils::isFormatCompatibleForRenderFlag(FORMAT format, unsigned int sampleCount,
                                                   unsigned int bindFlags) {
    constexpr unsigned int KNOWN_FLAGS = BIND_SHADER_RESOURCE | BIND_RENDER_TARGET | BIND_DEPTH_STENCIL;
    const FormatInfo& info = infoOf(format);
    if (!(info.flags & SAMPLED) || (bindFlags & ~KNOWN_FLAGS) != 0)
        return false;
    if ((bindFlags & BIND_RENDER_TARGET) && !(info.flags & RENDERABLE))
        return false;
    if ((bindFlags & BIND_DEPTH_STENCIL) && !(info.flags & DEPTH))
        return false;
    const bool drawable = (info.flags & (RENDERABLE | DEPTH)) != 0;
    const bool integer = info.component == COMPONENT::UINT || info.component == COMPONENT::SINT;
    const unsigned int mostSamples = !drawable || integer ? 1 : 4;
    return sampleCount >= 1 && sampleCount <= mostSamples;
}

} // namespace ovGraphics
