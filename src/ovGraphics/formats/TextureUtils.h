// What is known of each pixel format: sizes, components and its nearest relatives.
#pragma once

#include <cstddef>
#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

/// How the components of a format are read. A typeless format answers as the device reads it: 8-bit, 10-bit
/// and block-compressed components as UNORM, wider ones (and BC6H) as FLOAT.
enum class FORMAT_COMPONENT : unsigned int { NONE = 0, UNORM = 1, SNORM = 2, UINT = 3, SINT = 4, FLOAT = 5 };

inline constexpr ovMemory::EnumEntry<FORMAT_COMPONENT> FORMAT_COMPONENT_ENTRIES[] = {
    {FORMAT_COMPONENT::NONE, "NONE"}, {FORMAT_COMPONENT::UNORM, "UNORM"}, {FORMAT_COMPONENT::SNORM, "SNORM"},
    {FORMAT_COMPONENT::UINT, "UINT"}, {FORMAT_COMPONENT::SINT, "SINT"},   {FORMAT_COMPONENT::FLOAT, "FLOAT"},
};
constexpr ovMemory::EnumTable<FORMAT_COMPONENT> enumTable(FORMAT_COMPONENT) {
    return {"FORMAT_COMPONENT", FORMAT_COMPONENT_ENTRIES};
}

/// Facts of formats, for any value of FORMAT: a value outside the list answers as UNKNOWN does.
class OV_API TextureUtils {
public:
    /// The enumeration's text, such as "R8G8B8A8_UNORM". Never empty; "UNKNOWN" outside the list.
    static ovMemory::StringView getFormatName(FORMAT format);

    /// Components that carry a value, 0 to 4: padding (X) is not counted, stencil is.
    static unsigned int getFormatChannelCount(FORMAT format);

    static FORMAT_COMPONENT getFormatComponent(FORMAT format);

    /// Bytes of a texel, or of a block of texels (getFormatBlockWidth x getFormatBlockHeight); 0 for UNKNOWN.
    static unsigned int getFormatBlockSize(FORMAT format);

    /// Texels that a block spans: 1 x 1 for plain formats, 4 x 4 for BC1 to BC7.
    static unsigned int getFormatBlockWidth(FORMAT format);
    static unsigned int getFormatBlockHeight(FORMAT format);

    /// BC1 to BC7.
    static bool isFormatCompressed(FORMAT format);

    /// The _SRGB formats.
    static bool isFormatSrgb(FORMAT format);

    /// Formats of depth buffers, with or without stencil, and their typeless kin.
    static bool isFormatDepth(FORMAT format);

    /// True when a component's value 1 is the number 255 in memory: 8-bit UNORM components, not compressed.
    static bool isFormatOver255(FORMAT format);

    /// The _SRGB format of the same layout; the format itself when there is none (or it is one already).
    static FORMAT getFormatSrgbEquivalent(FORMAT format);

    /// The smallest format of the same kind with an alpha component; the format itself when it has one.
    static FORMAT getFormatWithAlphaEquivalent(FORMAT format);

    /// The plain format that holds what a compressed one decodes to; the format itself when not compressed.
    static FORMAT getFormatUncompressedEquivalent(FORMAT format);

    /// Bytes of a tight row of texels (of blocks, for compressed formats).
    static std::size_t getRowPitch(FORMAT format, unsigned int width);

    /// Bytes of a tight image of one slice and mip.
    static std::size_t getSliceSize(FORMAT format, unsigned int width, unsigned int height);

    /// Rows of a slice in memory: texel rows, or block rows of compressed formats.
    static unsigned int getRowCount(FORMAT format, unsigned int height);

    /// Mips of the full chain down to 1 x 1; 0 when a side is 0.
    static unsigned int getNeededMipsForSize(unsigned int width, unsigned int height);

    /// Uses of a texture (D3D11_BIND_FLAG) for isFormatCompatibleForRenderFlag.
    static constexpr unsigned int BIND_SHADER_RESOURCE = 0x8;
    static constexpr unsigned int BIND_RENDER_TARGET = 0x20;
    static constexpr unsigned int BIND_DEPTH_STENCIL = 0x40;

    /// Whether every OpenGL 4.5 device gives all the uses in bindFlags to a texture of this very format, with
    /// sampleCount samples a texel. More may be possible on the device at hand: ask it with
    /// device::Device::supportsRenderTarget(). BC1 to BC3, an extension that every desktop driver has, count
    /// as given. Always false for UNKNOWN, 0 samples, more than the 4 samples that OpenGL promises (1 for
    /// integers), and flags not listed above.
    static bool isFormatCompatibleForRenderFlag(FORMAT format, unsigned int sampleCount,
                                                unsigned int bindFlags);
};

} // namespace ovGraphics
