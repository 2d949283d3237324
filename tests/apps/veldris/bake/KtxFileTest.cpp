#include <veldris/bake/KtxFile.h>

#include "veldris/bake/CubeFileTesting.h"

#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovMemory::Buffer;
using ovMemory::String;
using veldris::CubeMap;

TEST(KtxFileTest, writesWhatTheFormatsSpecificationAsksFor) {
    struct Case {
        COMPONENT_TYPE type;
        std::uint32_t glType;
        std::uint32_t componentSize;
        std::uint32_t internalFormat;
    };
    for (const Case& row :
         {Case{COMPONENT_TYPE::HALF, 0x140b, 2, 0x881a}, Case{COMPONENT_TYPE::FLOAT, 0x1406, 4, 0x8814}}) {
        const CubeMap cube = countingCube(4, 3, row.type);
        const Buffer<unsigned char> bytes = veldris::encodeKtx(cube);
        const std::uint32_t texelSize = 4 * row.componentSize;
        ASSERT_EQ(bytes.size(), 64 + 3 * 4 + 6 * (16 + 4 + 1) * texelSize);
        EXPECT_EQ(String(bytes.begin(), bytes.begin() + 12), "\xabKTX 11\xbb\r\n\x1a\n");
        // Endianness, type, its size, format, internal and base format, width, height, depth, elements,
        // faces, mips, key-value data.
        const std::uint32_t words[] = {
            0x04030201, row.glType, row.componentSize, 0x1908, row.internalFormat, 0x1908, 4, 4, 0, 0, 6,
            3,          0};
        for (std::size_t i = 0; i < std::size(words); ++i)
            EXPECT_EQ(word(bytes, 12 + 4 * i), words[i]) << i;
        std::size_t at = 64;
        for (const ovImages::Image& mip : cube.mips) {
            EXPECT_EQ(word(bytes, at), mip.getBytes().size() / 6);
            EXPECT_TRUE(std::equal(mip.getBytes().begin(), mip.getBytes().end(), bytes.data() + at + 4));
            at += 4 + mip.getBytes().size();
        }
    }
    EXPECT_TRUE(veldris::encodeKtx(CubeMap()).empty());
}

TEST(KtxFileTest, readsWhatItWritesWithKeysAndWithout) {
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        for (const std::uint32_t keyBytes : {0u, 12u}) {
            const CubeMap cube = countingCube(5, 3, type);
            Buffer<unsigned char> bytes = veldris::encodeKtx(cube);
            setWord(bytes, 60, keyBytes);
            bytes.insert(bytes.begin() + 64, keyBytes, 0x55);
            CubeMap back;
            String error = "old";
            ASSERT_TRUE(veldris::decodeKtx(bytes, back, error)) << error;
            EXPECT_EQ(error, "");
            ASSERT_EQ(back.mips.size(), 3u);
            for (unsigned int mip = 0; mip < 3; ++mip) {
                EXPECT_EQ(back.mips[mip].getComponentType(), type);
                EXPECT_TRUE(std::ranges::equal(back.mips[mip].getBytes(), cube.mips[mip].getBytes()));
            }
        }
    }
}

TEST(KtxFileTest, everyWrongHeaderIsToldAndChangesNothing) {
    struct Case {
        std::size_t offset;
        std::uint32_t value;
        const char* message;
    };
    const Case cases[] = {
        {0, 0x20534444, "no KTX file"},
        {4, 0xbb303220, "no KTX file"}, // version 2
        {8, 0, "no KTX file"},
        {12, 0x01020304, "most significant bytes first"},
        {16, 0x1406, "OpenGL's format 0x881a"},
        {24, 0x1907, "OpenGL's format"},
        {28, 0x8058, "OpenGL's format 0x8058"},
        {36, 5, "faces have 5 x 4 texels"},
        {40, 0xffffffff, "faces have 4 x 4294967295 texels"},
        {44, 1, "no cube"},
        {48, 2, "or several"},
        {52, 1, "no cube"},
        {56, 4, "it tells of 4 mips"},
        {56, 2, "bytes where its header tells of"},
        {60, 0xffffffff, "bytes where its header tells of"},
        {64, 0xffffffff, "has 4294967295 bytes instead of 128"},
    };
    const Buffer<unsigned char> good = veldris::encodeKtx(countingCube(4, 3, COMPONENT_TYPE::HALF));
    for (const Case& row : cases) {
        Buffer<unsigned char> bytes = good;
        setWord(bytes, row.offset, row.value);
        CubeMap cube;
        String error;
        EXPECT_FALSE(veldris::decodeKtx(bytes, cube, error)) << row.message;
        EXPECT_NE(error.find(row.message), String::npos) << error;
        EXPECT_TRUE(cube.mips.empty());
    }
}

TEST(KtxFileTest, anyOtherLengthIsRefused) {
    const Buffer<unsigned char> good = veldris::encodeKtx(countingCube(2, 2, COMPONENT_TYPE::HALF));
    for (std::size_t length = 0; length < good.size() + 3; ++length) {
        Buffer<unsigned char> bytes = good;
        bytes.resize(length);
        CubeMap cube;
        String error;
        EXPECT_EQ(veldris::decodeKtx(bytes, cube, error), length == good.size()) << length;
        EXPECT_EQ(error.empty(), length == good.size()) << length;
    }
}

} // namespace
