#include <veldris/bake/DdsFile.h>

#include "veldris/bake/CubeFileTesting.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovMemory::Buffer;
using ovMemory::String;
using veldris::CubeMap;

TEST(DdsFileTest, writesWhatTheFormatsDocumentationAsksFor) {
    struct Case {
        COMPONENT_TYPE type;
        std::uint32_t format;
        std::uint32_t texelSize;
    };
    for (const Case& row : {Case{COMPONENT_TYPE::HALF, 10, 8}, Case{COMPONENT_TYPE::FLOAT, 2, 16}}) {
        const CubeMap cube = countingCube(4, 3, row.type);
        const Buffer<unsigned char> bytes = veldris::encodeDds(cube);
        ASSERT_EQ(bytes.size(), 148 + 6 * (16 + 4 + 1) * row.texelSize);
        EXPECT_EQ(String(bytes.begin(), bytes.begin() + 4), "DDS ");
        // Offset in the file and value: sizes, flags, shape, the four letters, caps, and the extension.
        const std::pair<std::size_t, std::uint32_t> words[] = {
            {4, 124},        {8, 0x2100f},  {12, 4},           {16, 4},  {20, 4 * row.texelSize},
            {24, 0},         {28, 3},       {76, 32},          {80, 4},  {84, 0x30315844},
            {108, 0x401008}, {112, 0xfe00}, {128, row.format}, {132, 3}, {136, 4},
            {140, 1},        {144, 0}};
        for (const auto& [offset, value] : words)
            EXPECT_EQ(word(bytes, offset), value) << "at " << offset;
        const unsigned char* at = bytes.data() + 148;
        for (unsigned int face = 0; face < 6; ++face) {
            for (const ovImages::Image& mip : cube.mips) {
                const auto texels = veldris::faceOf(mip, face).bytes;
                EXPECT_TRUE(std::equal(texels.begin(), texels.end(), at)) << "face " << face;
                at += texels.size();
            }
        }
    }
}

TEST(DdsFileTest, readsWhatItWrites) {
    struct Case {
        unsigned int side;
        unsigned int mipCount;
        COMPONENT_TYPE type;
    };
    const Case cases[] = {{1, 1, COMPONENT_TYPE::HALF},
                          {1, 1, COMPONENT_TYPE::FLOAT},
                          {5, 3, COMPONENT_TYPE::HALF},
                          {16, 3, COMPONENT_TYPE::FLOAT},
                          {7, 1, COMPONENT_TYPE::HALF}};
    for (const Case& row : cases) {
        const CubeMap cube = countingCube(row.side, row.mipCount, row.type);
        CubeMap back;
        String error = "old";
        ASSERT_TRUE(veldris::decodeDds(veldris::encodeDds(cube), back, error)) << error;
        EXPECT_EQ(error, "");
        ASSERT_EQ(back.mips.size(), cube.mips.size());
        for (unsigned int mip = 0; mip < row.mipCount; ++mip) {
            EXPECT_EQ(back.mips[mip].getComponentType(), row.type);
            EXPECT_TRUE(std::ranges::equal(back.mips[mip].getBytes(), cube.mips[mip].getBytes()));
        }
    }
}

TEST(DdsFileTest, readsTheOlderCodesOfTheFormats) {
    struct Case {
        COMPONENT_TYPE type;
        std::uint32_t code;
    };
    for (const Case& row : {Case{COMPONENT_TYPE::HALF, 113}, Case{COMPONENT_TYPE::FLOAT, 116}}) {
        const CubeMap cube = countingCube(2, 1, row.type);
        Buffer<unsigned char> bytes = veldris::encodeDds(cube);
        setWord(bytes, 84, row.code);
        setWord(bytes, 28, 0); // some writers leave the count of one mip out
        bytes.erase(bytes.begin() + 128, bytes.begin() + 148);
        CubeMap back;
        String error;
        ASSERT_TRUE(veldris::decodeDds(bytes, back, error)) << error;
        EXPECT_TRUE(std::ranges::equal(back.mips.front().getBytes(), cube.mips.front().getBytes()));
    }
}

TEST(DdsFileTest, everyWrongHeaderIsToldAndChangesNothing) {
    struct Case {
        std::size_t offset;
        std::uint32_t value;
        const char* message;
    };
    const Case cases[] = {
        {0, 0x474e5089, "no DDS file"},
        {4, 123, "no DDS file"},
        {76, 31, "no DDS file"},
        {12, 5, "faces have 4 x 5 texels"},
        {16, 0, "faces have 0 x 4 texels"},
        {16, 0xffffffff, "faces have 4294967295 x 4 texels"},
        {28, 4, "it tells of 4 mips; 4 texels a side have 1 to 3"},
        {28, 0xffffffff, "it tells of 4294967295 mips"},
        {28, 2, "bytes where its header tells of"},
        {80, 0x41, "not four half floats or floats"},
        {84, 0x31545844, "not four half floats or floats"}, // DXT1
        {84, 113, "bytes where its header tells of"},       // the extension counts as texels
        {128, 28, "DXGI format 28"},
        {132, 4, "no cube"},
        {136, 0, "no cube"},
        {140, 2, "or several"},
    };
    const Buffer<unsigned char> good = veldris::encodeDds(countingCube(4, 3, COMPONENT_TYPE::HALF));
    for (const Case& row : cases) {
        Buffer<unsigned char> bytes = good;
        setWord(bytes, row.offset, row.value);
        CubeMap cube;
        String error;
        EXPECT_FALSE(veldris::decodeDds(bytes, cube, error)) << row.message;
        EXPECT_NE(error.find(row.message), String::npos) << error;
        EXPECT_TRUE(cube.mips.empty());
    }
}

TEST(DdsFileTest, anyOtherLengthIsRefused) {
    const Buffer<unsigned char> good = veldris::encodeDds(countingCube(2, 2, COMPONENT_TYPE::HALF));
    for (std::size_t length = 0; length < good.size() + 3; ++length) {
        Buffer<unsigned char> bytes = good;
        bytes.resize(length);
        CubeMap cube;
        String error;
        EXPECT_EQ(veldris::decodeDds(bytes, cube, error), length == good.size()) << length;
        EXPECT_EQ(error.empty(), length == good.size()) << length;
    }
}

TEST(DdsFileTest, writesNothingButWholeCubes) {
    EXPECT_TRUE(veldris::encodeDds(CubeMap()).empty());
}

} // namespace
