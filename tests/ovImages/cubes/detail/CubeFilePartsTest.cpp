#include <ovImages/cubes/detail/CubeFileParts.h>

#include "ovImages/cubes/CubeFileTesting.h"

#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovImages::CubeMap;
using ovImages::detail::CubeFileHeader;
using ovMemory::String;

constexpr auto FLOATS = ovImages::detail::texelsInOrder(COMPONENT_TYPE::FLOAT, 4);

TEST(CubeFilePartsTest, texelsBecomeChannels) {
    using ovImages::COLOR_ENCODING;
    using ovImages::detail::CubeTexels;
    using ovImages::detail::texelsBlueFirst;
    using ovImages::detail::texelsInOrder;
    struct Case {
        CubeTexels texels;
        ovMemory::Buffer<unsigned char> expected; ///< of the bytes 1, 2, 3, ...
    };
    const auto bytes = COMPONENT_TYPE::UINT8;
    const Case cases[] = {{texelsInOrder(bytes, 1), {1, 2}},
                          {texelsInOrder(bytes, 2), {1, 2, 0, 3, 4, 0}},
                          {texelsInOrder(bytes, 3), {1, 2, 3, 4, 5, 6}},
                          {texelsInOrder(bytes, 4), {1, 2, 3, 4, 5, 6, 7, 8}},
                          {texelsBlueFirst(3, COLOR_ENCODING::SRGB), {3, 2, 1, 6, 5, 4}},
                          {texelsBlueFirst(4, COLOR_ENCODING::SRGB), {3, 2, 1, 4, 7, 6, 5, 8}},
                          {texelsBlueFirst(4, COLOR_ENCODING::SRGB, true), {3, 2, 1, 255, 7, 6, 5, 255}},
                          {texelsInOrder(COMPONENT_TYPE::HALF, 2), {1, 2, 3, 4, 0, 0, 5, 6, 7, 8, 0, 0}},
                          {{COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR, 1, 2, {0, CubeTexels::ONE, 0, 0}},
                           {1, 2, 0, 0x3c, 3, 4, 0, 0x3c}},
                          {{COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR, 1, 1, {CubeTexels::ONE, 0, 0, 0}},
                           {0, 0, 0x80, 0x3f}}};
    const unsigned char source[] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (const Case& row : cases) {
        ovMemory::Buffer<unsigned char> target(row.expected.size());
        ovImages::detail::readTexels(source, row.texels, target);
        EXPECT_EQ(target, row.expected);
    }
}

TEST(CubeFilePartsTest, wordsAreLittleEndian) {
    ovMemory::Buffer<unsigned char> bytes;
    ovImages::detail::appendWord(bytes, 0x01020304);
    ovImages::detail::appendWord(bytes, 0xfffefdfc);
    EXPECT_EQ(bytes, (ovMemory::Buffer<unsigned char>{4, 3, 2, 1, 0xfc, 0xfd, 0xfe, 0xff}));
    EXPECT_EQ(ovImages::detail::readWord(bytes, 0), 0x01020304u);
    EXPECT_EQ(ovImages::detail::readWord(bytes, 1), 0xfffefdfcu);
}

TEST(CubeFilePartsTest, sizesCountEveryMip) {
    const CubeFileHeader header = {5, 5, 3, FLOATS};
    EXPECT_EQ(ovImages::detail::cubeFaceSize(header, 1), 2u * 2 * 16);
    EXPECT_EQ(ovImages::detail::cubeSize(header), 6u * (25 + 4 + 1) * 16);
    EXPECT_EQ(ovImages::detail::cubeSize({16384, 16384, 1, FLOATS}), 6ull * 16384 * 16384 * 16);
}

TEST(CubeFilePartsTest, headersOfNoCubeAreTold) {
    struct Case {
        CubeFileHeader header;
        const char* message;
    };
    const Case cases[] = {
        {{1, 1, 1, {}}, ""},
        {{16384, 16384, 15, {}}, ""},
        {{5, 5, 3, {}}, ""},
        {{5, 5, 4, {}}, "it tells of 4 mips; 5 texels a side have 1 to 3."},
        {{5, 5, 0, {}}, "it tells of 0 mips; 5 texels a side have 1 to 3."},
        {{0, 0, 1, {}}, "its faces have 0 x 0 texels; they must be square, with 1 to 16384 a side."},
        {{4, 8, 1, {}}, "its faces have 4 x 8 texels; they must be square, with 1 to 16384 a side."},
        {{16385, 16385, 1, {}},
         "its faces have 16385 x 16385 texels; they must be square, with 1 to 16384 a side."}};
    for (const Case& row : cases) {
        String error;
        const bool isGood = ovImages::detail::checkCubeHeader(row.header, error);
        EXPECT_EQ(isGood, error.empty());
        EXPECT_EQ(error, row.message);
    }
}

TEST(CubeFilePartsTest, whatNoMemoryHoldsIsTold) {
    CubeMap cube;
    String error;
    EXPECT_FALSE(ovImages::detail::allocateCube({16384, 16384, 1, FLOATS}, cube, error));
    EXPECT_NE(error.find("16384"), String::npos) << error;
    error.clear();
    EXPECT_TRUE(ovImages::detail::allocateCube({4, 4, 3, {}}, cube, error));
    ASSERT_EQ(cube.mips.size(), 3u);
    EXPECT_EQ(cube.mips[2].getHeight(), 6u);
}

TEST(CubeFilePartsTest, onlyWholeCubesHaveHeaders) {
    CubeFileHeader header;
    ASSERT_TRUE(ovImages::detail::cubeHeaderOf(countingCube(5, 2, COMPONENT_TYPE::FLOAT), header));
    EXPECT_EQ(header.width, 5u);
    EXPECT_EQ(header.mipCount, 2u);
    EXPECT_EQ(header.texels.type, COMPONENT_TYPE::FLOAT);
    EXPECT_EQ(header.texels.channels, 4u);
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
        EXPECT_FALSE(ovImages::detail::cubeHeaderOf(cube, header));
}

} // namespace
