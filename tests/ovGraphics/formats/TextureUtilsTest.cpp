#include <ovGraphics/formats/TextureUtils.h>

#include <cctype>
#include <gtest/gtest.h>

namespace ovGraphics {

namespace {

constexpr unsigned int FORMAT_COUNT = 100;

bool startsWith(ovMemory::StringView text, ovMemory::StringView start) {
    return text.substr(0, start.size()) == start;
}

bool contains(ovMemory::StringView text, ovMemory::StringView part) {
    return text.find(part) != text.npos;
}

/// Adds up the numbers of a name such as R10G10B10A2_UNORM: the bits of a texel. S8X24 follows an underscore.
unsigned int bitsOfName(ovMemory::StringView name) {
    if (contains(name, "S8X24") || contains(name, "G8X24") || contains(name, "X8X24"))
        return 64;
    unsigned int bits = 0;
    for (std::size_t i = 0; i < name.size() && name[i] != '_'; ++i) {
        unsigned int number = 0;
        while (i + 1 < name.size() && std::isdigit(static_cast<unsigned char>(name[i + 1])))
            number = number * 10 + static_cast<unsigned int>(name[++i] - '0');
        bits += number;
    }
    // These keep their other bits after an underscore.
    if (startsWith(name, "D24") || startsWith(name, "R24_") || startsWith(name, "X24") ||
        contains(name, "XR_BIAS"))
        return 32;
    return bits;
}

} // namespace

TEST(TextureUtils, sizesOfPlainFormatsAreTheBitsOfTheirNames) {
    for (unsigned int i = 1; i < FORMAT_COUNT; ++i) {
        const FORMAT format = static_cast<FORMAT>(i);
        const ovMemory::StringView name = TextureUtils::getFormatName(format);
        if (TextureUtils::isFormatCompressed(format) || TextureUtils::getFormatBlockWidth(format) > 1)
            continue;
        EXPECT_EQ(TextureUtils::getFormatBlockSize(format) * 8, bitsOfName(name)) << name;
    }
}

TEST(TextureUtils, flagsFollowTheNames) {
    for (unsigned int i = 1; i < FORMAT_COUNT; ++i) {
        const FORMAT format = static_cast<FORMAT>(i);
        const ovMemory::StringView name = TextureUtils::getFormatName(format);
        EXPECT_EQ(TextureUtils::isFormatCompressed(format), startsWith(name, "BC")) << name;
        EXPECT_EQ(TextureUtils::isFormatSrgb(format), contains(name, "_SRGB")) << name;
        EXPECT_EQ(TextureUtils::getFormatBlockHeight(format), startsWith(name, "BC") ? 4u : 1u) << name;
        const ovMemory::String srgb = ovMemory::String(name) + "_SRGB";
        const FORMAT relative = TextureUtils::getFormatSrgbEquivalent(format);
        EXPECT_TRUE(relative == format || TextureUtils::getFormatName(relative) == srgb) << name;
        for (unsigned int other = 1; other < FORMAT_COUNT; ++other)
            if (TextureUtils::getFormatName(static_cast<FORMAT>(other)) == srgb) {
                EXPECT_EQ(relative, static_cast<FORMAT>(other)) << name;
            }
        // Twice an equivalent is the same as once.
        EXPECT_EQ(TextureUtils::getFormatSrgbEquivalent(relative), relative) << name;
        const FORMAT alpha = TextureUtils::getFormatWithAlphaEquivalent(format);
        EXPECT_EQ(TextureUtils::getFormatWithAlphaEquivalent(alpha), alpha) << name;
        const FORMAT plain = TextureUtils::getFormatUncompressedEquivalent(format);
        EXPECT_FALSE(TextureUtils::isFormatCompressed(plain)) << name;
        EXPECT_EQ(TextureUtils::isFormatSrgb(plain), TextureUtils::isFormatSrgb(format)) << name;
    }
}

TEST(TextureUtils, namesAndChannels) {
    struct Row {
        FORMAT format;
        const char* name;
        unsigned int channels;
        FORMAT_COMPONENT component;
        bool over255;
    };
    constexpr Row ROWS[] = {
        {FORMAT::UNKNOWN, "UNKNOWN", 0, FORMAT_COMPONENT::NONE, false},
        {FORMAT::R8G8B8A8_UNORM, "R8G8B8A8_UNORM", 4, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::R8G8B8A8_UNORM_SRGB, "R8G8B8A8_UNORM_SRGB", 4, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::R8G8B8A8_UINT, "R8G8B8A8_UINT", 4, FORMAT_COMPONENT::UINT, false},
        {FORMAT::R8G8B8A8_SNORM, "R8G8B8A8_SNORM", 4, FORMAT_COMPONENT::SNORM, false},
        {FORMAT::R8_UNORM, "R8_UNORM", 1, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::A8_UNORM, "A8_UNORM", 1, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::B8G8R8A8_UNORM, "B8G8R8A8_UNORM", 4, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::B8G8R8X8_UNORM, "B8G8R8X8_UNORM", 3, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::R16_UNORM, "R16_UNORM", 1, FORMAT_COMPONENT::UNORM, false},
        {FORMAT::R10G10B10A2_UNORM, "R10G10B10A2_UNORM", 4, FORMAT_COMPONENT::UNORM, false},
        {FORMAT::B5G6R5_UNORM, "B5G6R5_UNORM", 3, FORMAT_COMPONENT::UNORM, false},
        {FORMAT::R11G11B10_FLOAT, "R11G11B10_FLOAT", 3, FORMAT_COMPONENT::FLOAT, false},
        {FORMAT::R9G9B9E5_SHAREDEXP, "R9G9B9E5_SHAREDEXP", 3, FORMAT_COMPONENT::FLOAT, false},
        {FORMAT::R32G32B32_FLOAT, "R32G32B32_FLOAT", 3, FORMAT_COMPONENT::FLOAT, false},
        {FORMAT::R16G16_SINT, "R16G16_SINT", 2, FORMAT_COMPONENT::SINT, false},
        {FORMAT::R16_TYPELESS, "R16_TYPELESS", 1, FORMAT_COMPONENT::FLOAT, false},
        {FORMAT::R8_TYPELESS, "R8_TYPELESS", 1, FORMAT_COMPONENT::UNORM, true},
        {FORMAT::D24_UNORM_S8_UINT, "D24_UNORM_S8_UINT", 2, FORMAT_COMPONENT::UNORM, false},
        {FORMAT::BC1_UNORM, "BC1_UNORM", 4, FORMAT_COMPONENT::UNORM, false},
        {FORMAT::BC4_SNORM, "BC4_SNORM", 1, FORMAT_COMPONENT::SNORM, false},
        {FORMAT::BC6H_UF16, "BC6H_UF16", 3, FORMAT_COMPONENT::FLOAT, false},
        {static_cast<FORMAT>(100), "UNKNOWN", 0, FORMAT_COMPONENT::NONE, false},
        {static_cast<FORMAT>(~0u), "UNKNOWN", 0, FORMAT_COMPONENT::NONE, false},
    };
    for (const Row& row : ROWS) {
        EXPECT_EQ(TextureUtils::getFormatName(row.format), row.name);
        EXPECT_EQ(TextureUtils::getFormatChannelCount(row.format), row.channels) << row.name;
        EXPECT_EQ(TextureUtils::getFormatComponent(row.format), row.component) << row.name;
        EXPECT_EQ(TextureUtils::isFormatOver255(row.format), row.over255) << row.name;
    }
}

TEST(TextureUtils, equivalents) {
    struct Row {
        FORMAT format;
        FORMAT srgb;
        FORMAT withAlpha;
        FORMAT uncompressed;
    };
    using F = FORMAT;
    constexpr Row ROWS[] = {
        {F::R8G8B8A8_UNORM, F::R8G8B8A8_UNORM_SRGB, F::R8G8B8A8_UNORM, F::R8G8B8A8_UNORM},
        {F::B8G8R8A8_UNORM, F::B8G8R8A8_UNORM_SRGB, F::B8G8R8A8_UNORM, F::B8G8R8A8_UNORM},
        {F::B8G8R8X8_UNORM, F::B8G8R8X8_UNORM_SRGB, F::B8G8R8A8_UNORM, F::B8G8R8X8_UNORM},
        {F::B8G8R8X8_UNORM_SRGB, F::B8G8R8X8_UNORM_SRGB, F::B8G8R8A8_UNORM_SRGB, F::B8G8R8X8_UNORM_SRGB},
        {F::R32G32B32_FLOAT, F::R32G32B32_FLOAT, F::R32G32B32A32_FLOAT, F::R32G32B32_FLOAT},
        {F::R32G32B32A32_FLOAT, F::R32G32B32A32_FLOAT, F::R32G32B32A32_FLOAT, F::R32G32B32A32_FLOAT},
        {F::R16_FLOAT, F::R16_FLOAT, F::R16G16B16A16_FLOAT, F::R16_FLOAT},
        {F::R16G16_UINT, F::R16G16_UINT, F::R16G16B16A16_UINT, F::R16G16_UINT},
        {F::R8_UNORM, F::R8_UNORM, F::R8G8B8A8_UNORM, F::R8_UNORM},
        {F::R8G8_SNORM, F::R8G8_SNORM, F::R8G8B8A8_SNORM, F::R8G8_SNORM},
        {F::A8_UNORM, F::A8_UNORM, F::A8_UNORM, F::A8_UNORM},
        {F::R11G11B10_FLOAT, F::R11G11B10_FLOAT, F::R16G16B16A16_FLOAT, F::R11G11B10_FLOAT},
        {F::R9G9B9E5_SHAREDEXP, F::R9G9B9E5_SHAREDEXP, F::R16G16B16A16_FLOAT, F::R9G9B9E5_SHAREDEXP},
        {F::BC1_UNORM, F::BC1_UNORM_SRGB, F::BC1_UNORM, F::R8G8B8A8_UNORM},
        {F::BC2_UNORM, F::BC2_UNORM_SRGB, F::BC2_UNORM, F::R8G8B8A8_UNORM},
        {F::BC3_UNORM_SRGB, F::BC3_UNORM_SRGB, F::BC3_UNORM_SRGB, F::R8G8B8A8_UNORM_SRGB},
        {F::BC4_UNORM, F::BC4_UNORM, F::R8G8B8A8_UNORM, F::R8_UNORM},
        {F::BC4_SNORM, F::BC4_SNORM, F::R8G8B8A8_SNORM, F::R8_SNORM},
        {F::BC5_UNORM, F::BC5_UNORM, F::R8G8B8A8_UNORM, F::R8G8_UNORM},
        {F::BC5_SNORM, F::BC5_SNORM, F::R8G8B8A8_SNORM, F::R8G8_SNORM},
        {F::BC6H_SF16, F::BC6H_SF16, F::R16G16B16A16_FLOAT, F::R16G16B16A16_FLOAT},
        {F::BC7_UNORM, F::BC7_UNORM_SRGB, F::BC7_UNORM, F::R8G8B8A8_UNORM},
        {F::UNKNOWN, F::UNKNOWN, F::UNKNOWN, F::UNKNOWN},
    };
    for (const Row& row : ROWS) {
        const ovMemory::StringView name = TextureUtils::getFormatName(row.format);
        EXPECT_EQ(TextureUtils::getFormatSrgbEquivalent(row.format), row.srgb) << name;
        EXPECT_EQ(TextureUtils::getFormatWithAlphaEquivalent(row.format), row.withAlpha) << name;
        EXPECT_EQ(TextureUtils::getFormatUncompressedEquivalent(row.format), row.uncompressed) << name;
    }
}

TEST(TextureUtils, pitchesAndSizes) {
    struct Row {
        FORMAT format;
        unsigned int width, height;
        std::size_t pitch, size;
        unsigned int rows;
    };
    constexpr Row ROWS[] = {
        {FORMAT::R8G8B8A8_UNORM, 5, 3, 20, 60, 3},
        {FORMAT::R32G32B32_FLOAT, 7, 2, 84, 168, 2},
        {FORMAT::R8_UNORM, 1, 1, 1, 1, 1},
        {FORMAT::BC1_UNORM, 8, 8, 16, 32, 2},
        {FORMAT::BC1_UNORM, 1, 1, 8, 8, 1},
        {FORMAT::BC7_UNORM, 5, 9, 32, 96, 3},
        {FORMAT::R8G8_B8G8_UNORM, 5, 2, 12, 24, 2},
        {FORMAT::R1_UNORM, 9, 2, 2, 4, 2},
        {FORMAT::D32_FLOAT_S8X24_UINT, 3, 2, 24, 48, 2},
        {FORMAT::R32G32B32A32_FLOAT, 4294967295u, 4294967295u, 68719476720u, 0, 4294967295u},
        {FORMAT::BC1_UNORM, 4294967295u, 1, 8589934592u, 8589934592u, 1},
        {FORMAT::UNKNOWN, 16, 16, 0, 0, 16},
    };
    for (const Row& row : ROWS) {
        const ovMemory::StringView name = TextureUtils::getFormatName(row.format);
        EXPECT_EQ(TextureUtils::getRowPitch(row.format, row.width), row.pitch) << name;
        EXPECT_EQ(TextureUtils::getRowCount(row.format, row.height), row.rows) << name;
        if (row.width < 4294967295u || row.height == 1) {
            EXPECT_EQ(TextureUtils::getSliceSize(row.format, row.width, row.height), row.size) << name;
        }
    }
}

TEST(TextureUtils, fullMipChains) {
    constexpr unsigned int ROWS[][3] = {{1, 1, 1},          {2, 1, 2},    {1, 2, 2},   {3, 3, 2},
                                        {4, 4, 3},          {256, 16, 9}, {255, 1, 8}, {1920, 1080, 11},
                                        {16384, 16384, 15}, {0, 8, 0},    {8, 0, 0}};
    for (const auto& row : ROWS)
        EXPECT_EQ(TextureUtils::getNeededMipsForSize(row[0], row[1]), row[2]) << row[0] << "x" << row[1];
}

TEST(TextureUtils, usesThatEveryDeviceGives) {
    constexpr unsigned int RESOURCE = TextureUtils::BIND_SHADER_RESOURCE;
    constexpr unsigned int TARGET = TextureUtils::BIND_RENDER_TARGET;
    constexpr unsigned int DEPTH = TextureUtils::BIND_DEPTH_STENCIL;
    struct Row {
        FORMAT format;
        unsigned int samples, flags;
        bool expected;
    };
    constexpr Row ROWS[] = {
        {FORMAT::R8G8B8A8_UNORM, 1, RESOURCE, true},    {FORMAT::R8G8B8A8_UNORM, 1, RESOURCE | TARGET, true},
        {FORMAT::R8G8B8A8_UNORM, 4, TARGET, true},      {FORMAT::R8G8B8A8_UNORM, 5, TARGET, false},
        {FORMAT::R8G8B8A8_UNORM, 0, TARGET, false},     {FORMAT::R8G8B8A8_UNORM, 1, DEPTH, false},
        {FORMAT::R8G8B8A8_UNORM, 1, 0x80, false},       {FORMAT::R8G8B8A8_UINT, 1, TARGET, true},
        {FORMAT::R8G8B8A8_UINT, 2, TARGET, false},      {FORMAT::R8G8B8A8_SNORM, 1, RESOURCE, true},
        {FORMAT::R8G8B8A8_SNORM, 1, TARGET, false},     {FORMAT::R32G32B32_FLOAT, 1, RESOURCE, true},
        {FORMAT::R32G32B32_FLOAT, 1, TARGET, false},    {FORMAT::R9G9B9E5_SHAREDEXP, 1, TARGET, false},
        {FORMAT::R11G11B10_FLOAT, 1, TARGET, true},     {FORMAT::BC3_UNORM, 1, RESOURCE, true},
        {FORMAT::BC3_UNORM, 2, RESOURCE, false},        {FORMAT::BC3_UNORM, 1, TARGET, false},
        {FORMAT::D32_FLOAT, 1, RESOURCE | DEPTH, true}, {FORMAT::D32_FLOAT, 4, DEPTH, true},
        {FORMAT::D32_FLOAT, 1, TARGET, false},          {FORMAT::R8G8_B8G8_UNORM, 1, RESOURCE, false},
        {FORMAT::UNKNOWN, 1, RESOURCE, false},
    };
    for (const Row& row : ROWS)
        EXPECT_EQ(TextureUtils::isFormatCompatibleForRenderFlag(row.format, row.samples, row.flags),
                  row.expected)
            << TextureUtils::getFormatName(row.format) << ", " << row.samples << " samples, flags "
            << row.flags;
}

} // namespace ovGraphics
