#include <veldris/bake/CubeFileParts.h>

#include "veldris/bake/CubeFileTesting.h"

#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovMemory::String;
using veldris::CubeFileHeader;
using veldris::CubeMap;

TEST(CubeFilePartsTest, wordsAreLittleEndian) {
    ovMemory::Buffer<unsigned char> bytes;
    veldris::appendWord(bytes, 0x01020304);
    veldris::appendWord(bytes, 0xfffefdfc);
    EXPECT_EQ(bytes, (ovMemory::Buffer<unsigned char>{4, 3, 2, 1, 0xfc, 0xfd, 0xfe, 0xff}));
    EXPECT_EQ(veldris::readWord(bytes, 0), 0x01020304u);
    EXPECT_EQ(veldris::readWord(bytes, 1), 0xfffefdfcu);
}

TEST(CubeFilePartsTest, sizesCountEveryMip) {
    const CubeFileHeader header = {5, 5, 3, COMPONENT_TYPE::FLOAT};
    EXPECT_EQ(veldris::cubeFaceSize(header, 1), 2u * 2 * 16);
    EXPECT_EQ(veldris::cubeSize(header), 6u * (25 + 4 + 1) * 16);
    EXPECT_EQ(veldris::cubeSize({16384, 16384, 1, COMPONENT_TYPE::FLOAT}), 6ull * 16384 * 16384 * 16);
}

TEST(CubeFilePartsTest, headersOfNoCubeAreTold) {
    struct Case {
        CubeFileHeader header;
        const char* message;
    };
    const Case cases[] = {
        {{1, 1, 1}, ""},
        {{16384, 16384, 15}, ""},
        {{5, 5, 3}, ""},
        {{5, 5, 4}, "it tells of 4 mips; 5 texels a side have 1 to 3."},
        {{5, 5, 0}, "it tells of 0 mips; 5 texels a side have 1 to 3."},
        {{0, 0, 1}, "its faces have 0 x 0 texels; they must be square, with 1 to 16384 a side."},
        {{4, 8, 1}, "its faces have 4 x 8 texels; they must be square, with 1 to 16384 a side."},
        {{16385, 16385, 1},
         "its faces have 16385 x 16385 texels; they must be square, with 1 to 16384 a side."}};
    for (const Case& row : cases) {
        String error;
        const bool isGood = veldris::checkCubeHeader(row.header, error);
        EXPECT_EQ(isGood, error.empty());
        EXPECT_EQ(error, row.message);
    }
}

TEST(CubeFilePartsTest, whatNoMemoryHoldsIsTold) {
    CubeMap cube;
    String error;
    EXPECT_FALSE(veldris::allocateCube({16384, 16384, 1, COMPONENT_TYPE::FLOAT}, cube, error));
    EXPECT_NE(error.find("16384"), String::npos) << error;
    error.clear();
    EXPECT_TRUE(veldris::allocateCube({4, 4, 3, COMPONENT_TYPE::HALF}, cube, error));
    ASSERT_EQ(cube.mips.size(), 3u);
    EXPECT_EQ(cube.mips[2].getHeight(), 6u);
}

TEST(CubeFilePartsTest, onlyWholeCubesHaveHeaders) {
    CubeFileHeader header;
    ASSERT_TRUE(veldris::cubeHeaderOf(countingCube(5, 2, COMPONENT_TYPE::FLOAT), header));
    EXPECT_EQ(header.width, 5u);
    EXPECT_EQ(header.mipCount, 2u);
    EXPECT_EQ(header.type, COMPONENT_TYPE::FLOAT);
    CubeMap eightBits;
    eightBits.mips.emplace_back(1, 6, 4, COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::LINEAR);
    CubeMap threeChannels;
    threeChannels.mips.emplace_back(1, 6, 3, COMPONENT_TYPE::HALF, ovImages::COLOR_ENCODING::LINEAR);
    CubeMap oddMip = countingCube(4, 2, COMPONENT_TYPE::HALF);
    oddMip.mips[1] = oddMip.mips[0];
    CubeMap tooMany = countingCube(1, 2, COMPONENT_TYPE::HALF);
    CubeMap mixed = countingCube(4, 2, COMPONENT_TYPE::HALF);
    mixed.mips[1] = countingCube(2, 1, COMPONENT_TYPE::FLOAT).mips[0];
    for (const CubeMap& cube : {CubeMap(), eightBits, threeChannels, oddMip, tooMany, mixed})
        EXPECT_FALSE(veldris::cubeHeaderOf(cube, header));
}

} // namespace
