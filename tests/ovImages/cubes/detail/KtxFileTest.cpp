#include <ovImages/cubes/detail/KtxFile.h>

#include "ovImages/cubes/CubeFileTesting.h"

#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovImages::CubeMap;
using ovImages::detail::decodeKtx;
using ovImages::detail::encodeKtx;
using ovMemory::Buffer;
using ovMemory::String;

// Offsets in a file of three mips: 80 bytes of header and 24 a mip come before the descriptor.
constexpr std::size_t PLACES = 80;
constexpr std::size_t DESCRIPTOR = PLACES + 3 * 24;
constexpr std::size_t KEYS = DESCRIPTOR + 92;

TEST(KtxFileTest, writesWhatTheFormatsSpecificationAsksFor) {
    struct Case {
        COMPONENT_TYPE type;
        std::uint32_t vkFormat;
        std::uint32_t componentSize;
        std::uint32_t red; ///< first word of the sample of red: 16 or 32 bits, signed, float
    };
    for (const Case& row :
         {Case{COMPONENT_TYPE::HALF, 97, 2, 0xc00f0000}, Case{COMPONENT_TYPE::FLOAT, 109, 4, 0xc01f0000}}) {
        const CubeMap cube = countingCube(4, 3, row.type);
        const Buffer<unsigned char> bytes = encodeKtx(cube);
        const std::uint32_t texelSize = 4 * row.componentSize;
        ASSERT_GT(bytes.size(), KEYS + 6 * (16 + 4 + 1) * texelSize);
        EXPECT_EQ(String(bytes.begin(), bytes.begin() + 12), "\xabKTX 20\xbb\r\n\x1a\n");
        // 4 + 18 bytes of the orientation with two of padding, and 4 + 19 of the writer with one.
        constexpr std::uint32_t KEY_BYTES = 24 + 24;
        // Format, size of components, width, height, depth, layers, faces, mips, supercompression, places of
        // descriptor and keys, nothing global.
        const std::uint32_t words[] = {row.vkFormat, row.componentSize, 4, 4, 0, 0, 6, 3, 0, DESCRIPTOR, 92,
                                       KEYS,         KEY_BYTES,         0, 0, 0, 0};
        for (std::size_t i = 0; i < std::size(words); ++i)
            EXPECT_EQ(word(bytes, 12 + 4 * i), words[i]) << i;
        const std::uint32_t descriptor[] = {92, 0, 2 | 88 << 16, 0x00010101, 0, texelSize, 0};
        for (std::size_t i = 0; i < std::size(descriptor); ++i)
            EXPECT_EQ(word(bytes, DESCRIPTOR + 4 * i), descriptor[i]) << i;
        const std::uint32_t channels[] = {0, 1, 2, 15};
        for (std::uint32_t i = 0; i < 4; ++i) {
            const std::size_t at = DESCRIPTOR + 28 + 16 * i;
            EXPECT_EQ(word(bytes, at), row.red + 8 * row.componentSize * i + (channels[i] << 24)) << i;
            EXPECT_EQ(word(bytes, at + 4), 0u);
            EXPECT_EQ(word(bytes, at + 8), 0xbf800000u);
            EXPECT_EQ(word(bytes, at + 12), 0x3f800000u);
        }
        EXPECT_EQ(String(bytes.begin() + KEYS, bytes.begin() + KEYS + KEY_BYTES),
                  String("\x12\0\0\0KTXorientation\0rd\0\0\0\x13\0\0\0KTXwriter\0ovImages\0\0", KEY_BYTES));
        std::size_t at = KEYS + KEY_BYTES;
        for (; at % texelSize != 0; ++at)
            EXPECT_EQ(bytes[at], 0);
        for (const unsigned int mip : {2u, 1u, 0u}) {
            const auto texels = cube.mips[mip].getBytes();
            const std::uint64_t place[] = {at, texels.size(), texels.size()};
            for (std::size_t i = 0; i < std::size(place); ++i) {
                EXPECT_EQ(word(bytes, PLACES + 24 * mip + 8 * i), place[i]) << mip;
                EXPECT_EQ(word(bytes, PLACES + 24 * mip + 8 * i + 4), 0u);
            }
            EXPECT_TRUE(std::equal(texels.begin(), texels.end(), bytes.data() + at));
            at += texels.size();
        }
        EXPECT_EQ(bytes.size(), at);
    }
    EXPECT_TRUE(encodeKtx(CubeMap()).empty());
}

TEST(KtxFileTest, readsWhatItWrites) {
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        for (const unsigned int mipCount : {1u, 2u, 3u}) {
            const CubeMap cube = countingCube(5, mipCount, type);
            Buffer<unsigned char> bytes = encodeKtx(cube);
            if (mipCount == 1)
                setWord(bytes, 40, 0); // mips are left to the reader
            expectReadAs(cube, decodeKtx, bytes);
        }
    }
}

TEST(KtxFileTest, readsFilesWithoutKeys) {
    const CubeMap cube = countingCube(4, 3, COMPONENT_TYPE::HALF);
    Buffer<unsigned char> bytes = encodeKtx(cube);
    // The keys end at 296, where the mips begin; without them these begin at 248, after padding of 4 bytes.
    bytes.erase(bytes.begin() + KEYS + 4, bytes.begin() + 296);
    setWord(bytes, KEYS, 0);
    setWord(bytes, 56, 0);
    setWord(bytes, 60, 0);
    for (std::size_t mip = 0; mip < 3; ++mip)
        setWord(bytes, PLACES + 24 * mip, word(bytes, PLACES + 24 * mip) - 48);
    expectReadAs(cube, decodeKtx, bytes);
}

/// A file of one texel a face and two mips below none, written byte by byte from the format's rules.
Buffer<unsigned char> fileOfTwoMips(std::uint32_t format, std::uint32_t typeSize, std::uint32_t texelSize,
                                    const Buffer<std::uint32_t>& samples, std::uint32_t transfer) {
    const auto count = static_cast<std::uint32_t>(samples.size());
    const std::uint32_t descriptorBytes = 4 * (7 + 4 * count);
    const std::uint32_t alignment = texelSize % 4 == 0   ? texelSize
                                    : texelSize % 2 == 0 ? 2 * texelSize
                                                         : 4 * texelSize;
    const auto aligned = [&](std::uint32_t at) { return (at + alignment - 1) / alignment * alignment; };
    const std::uint32_t small = aligned(80 + 48 + descriptorBytes);
    const std::uint32_t large = aligned(small + 6 * texelSize);
    Buffer<std::uint32_t> words = {0x58544bab,
                                   0xbb303220,
                                   0x0a1a0a0d,
                                   format,
                                   typeSize,
                                   2,
                                   2,
                                   0,
                                   0,
                                   6,
                                   2,
                                   0,
                                   128,
                                   descriptorBytes,
                                   0,
                                   0,
                                   0,
                                   0,
                                   0,
                                   0,
                                   large,
                                   0,
                                   24 * texelSize,
                                   0,
                                   24 * texelSize,
                                   0,
                                   small,
                                   0,
                                   6 * texelSize,
                                   0,
                                   6 * texelSize,
                                   0,
                                   descriptorBytes,
                                   0,
                                   2 | (descriptorBytes - 4) << 16,
                                   1 | 1 << 8 | transfer << 16,
                                   0,
                                   texelSize,
                                   0};
    for (const std::uint32_t sample : samples)
        words.insert(words.end(), {sample, 0, 0, 1});
    Buffer<unsigned char> bytes(words.size() * 4);
    std::memcpy(bytes.data(), words.data(), bytes.size());
    bytes.resize(small, 0xee);
    for (std::uint32_t i = 0; i < 6 * texelSize; ++i)
        bytes.push_back(static_cast<unsigned char>(i + 1));
    bytes.resize(large, 0xee);
    for (std::uint32_t i = 0; i < 24 * texelSize; ++i)
        bytes.push_back(static_cast<unsigned char>(100 + i));
    return bytes;
}

TEST(KtxFileTest, readsEveryFormatOfColors) {
    using enum COMPONENT_TYPE;
    struct Case {
        std::uint32_t format, typeSize, stored;
        COMPONENT_TYPE type;
        unsigned int channels;
        bool isSrgb;
        bool isBlueFirst;
    };
    const Case cases[] = {{9, 1, 1, UINT8, 1, false, false},   {15, 1, 1, UINT8, 1, true, false},
                          {16, 1, 2, UINT8, 3, false, false},  {22, 1, 2, UINT8, 3, true, false},
                          {23, 1, 3, UINT8, 3, false, false},  {29, 1, 3, UINT8, 3, true, false},
                          {30, 1, 3, UINT8, 3, false, true},   {36, 1, 3, UINT8, 3, true, true},
                          {37, 1, 4, UINT8, 4, false, false},  {43, 1, 4, UINT8, 4, true, false},
                          {44, 1, 4, UINT8, 4, false, true},   {50, 1, 4, UINT8, 4, true, true},
                          {76, 2, 1, HALF, 1, false, false},   {83, 2, 2, HALF, 3, false, false},
                          {90, 2, 3, HALF, 3, false, false},   {97, 2, 4, HALF, 4, false, false},
                          {100, 4, 1, FLOAT, 1, false, false}, {103, 4, 2, FLOAT, 3, false, false},
                          {106, 4, 3, FLOAT, 3, false, false}, {109, 4, 4, FLOAT, 4, false, false}};
    for (const Case& row : cases) {
        Buffer<std::uint32_t> samples;
        for (std::uint32_t i = 0; i < row.stored; ++i) {
            const std::uint32_t bits = 8 * row.typeSize;
            const std::uint32_t channel = i == 3 ? (row.isSrgb ? 0x1f : 15) : row.isBlueFirst ? 2 - i : i;
            samples.push_back(i * bits | (bits - 1) << 16 | (channel | (row.typeSize > 1 ? 0xc0 : 0)) << 24);
        }
        const std::uint32_t texelSize = row.stored * row.typeSize;
        const auto bytes = fileOfTwoMips(row.format, row.typeSize, texelSize, samples, row.isSrgb ? 2 : 1);
        CubeMap cube;
        String error;
        ASSERT_TRUE(decodeKtx(bytes, cube, error)) << row.format << ": " << error;
        ASSERT_EQ(cube.mips.size(), 2u);
        EXPECT_EQ(cube.mips[0].getComponentType(), row.type) << row.format;
        EXPECT_EQ(cube.mips[0].getChannels(), row.channels) << row.format;
        EXPECT_EQ(cube.mips[0].getEncoding() == ovImages::COLOR_ENCODING::SRGB, row.isSrgb) << row.format;
        const int red = row.isBlueFirst ? 2 : 0;
        EXPECT_EQ(cube.mips[0].getBytes()[0], 100 + red) << row.format;
        EXPECT_EQ(cube.mips[1].getBytes()[0], 1 + red) << row.format;
        // The same with a channel that its format has not there.
        samples[0] ^= 0x01000000;
        EXPECT_FALSE(decodeKtx(
            fileOfTwoMips(row.format, row.typeSize, texelSize, samples, row.isSrgb ? 2 : 1), cube, error));
        EXPECT_NE(error.find("other texels"), String::npos) << error;
    }
}

TEST(KtxFileTest, everyWrongHeaderIsToldAndChangesNothing) {
    const WrongWord cases[] = {
        {0, 0x20534444, "no KTX file"},
        {4, 0xbb313120, "no KTX file of version 2"}, // version 1
        {8, 0, "no KTX file"},
        {12, 37, "components have 2 bytes where its format has 1"},
        {12, 131, "Vulkan's format 131"},
        {12, 0, "Vulkan's format 0"},
        {12, 109, "components have 2 bytes where its format has 4"},
        {16, 1, "components have 1 bytes"},
        {20, 5, "faces have 5 x 4 texels"},
        {24, 0xffffffff, "faces have 4 x 4294967295 texels"},
        {28, 1, "no cube"},
        {32, 2, "or several"},
        {36, 1, "no cube"},
        {40, 4, "it tells of 4 mips"},
        {40, 0xffffffff, "it tells of 4294967295 mips"},
        {40, 2, "bytes where its header tells of"},
        {44, 2, "compressed by scheme 2"},
        {48, 0, "not where the format puts them"},
        {52, 0xffffffff, "bytes where its header tells of"},
        {52, 88, "bytes where its header tells of"},
        {56, 0xfffffffc, "not where the format puts them"},
        {60, 0xffffffff, "bytes where its header tells of"},
        {64, 8, "not where the format puts them"},
        {76, 1, "not where the format puts them"},
        {PLACES, 0, "mip 0 is not where"},
        {PLACES + 4, 1, "mip 0 is not where"},
        {PLACES + 32, 0xffffffff, "mip 1 is not where"},
        {PLACES + 68, 1, "mip 2 is not where"},
        {DESCRIPTOR, 88, "other texels"},
        {DESCRIPTOR + 12, 0x00020101, "other texels"}, // sRGB
        {DESCRIPTOR + 28, 0x400f0000, "other texels"}, // integers
        {KEYS, 0xffffffff, "not whole"},
        {KEYS, 14, "not whole"}, // a key without an end
        {KEYS, 0, "not whole"},
        {KEYS + 19, 0x7572, "orientation rd"}, // "ru"
    };
    expectRefused(encodeKtx(countingCube(4, 3, COMPONENT_TYPE::HALF)), decodeKtx, cases);
}

TEST(KtxFileTest, anyOtherLengthIsRefused) {
    expectNoOtherLength(encodeKtx(countingCube(2, 2, COMPONENT_TYPE::HALF)), decodeKtx);
}

} // namespace
