#include <ovImages/cubes/detail/DdsFile.h>

#include "ovImages/cubes/CubeFileTesting.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovImages::CubeMap;
using ovImages::detail::decodeDds;
using ovImages::detail::encodeDds;
using ovMemory::Buffer;
using ovMemory::String;

TEST(DdsFileTest, writesWhatTheFormatsDocumentationAsksFor) {
    struct Case {
        COMPONENT_TYPE type;
        std::uint32_t format;
        std::uint32_t texelSize;
    };
    for (const Case& row : {Case{COMPONENT_TYPE::HALF, 10, 8}, Case{COMPONENT_TYPE::FLOAT, 2, 16}}) {
        const CubeMap cube = countingCube(4, 3, row.type);
        const Buffer<unsigned char> bytes = encodeDds(cube);
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
                const auto texels = ovImages::faceOf(mip, face).bytes;
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
        expectReadAs(cube, decodeDds, encodeDds(cube));
    }
}

TEST(DdsFileTest, readsTheOlderCodesOfTheFormats) {
    struct Case {
        COMPONENT_TYPE type;
        std::uint32_t code;
    };
    for (const Case& row : {Case{COMPONENT_TYPE::HALF, 113}, Case{COMPONENT_TYPE::FLOAT, 116}}) {
        const CubeMap cube = countingCube(2, 1, row.type);
        Buffer<unsigned char> bytes = encodeDds(cube);
        setWord(bytes, 84, row.code);
        setWord(bytes, 28, 0); // some writers leave the count of one mip out
        bytes.erase(bytes.begin() + 128, bytes.begin() + 148);
        expectReadAs(cube, decodeDds, bytes);
    }
}

/// A file of one texel a face, 1, 2, 3, ... byte by byte, with words of its header changed.
Buffer<unsigned char> fileOfOneTexel(std::size_t texelSize, bool isExtended,
                                     const Buffer<std::pair<std::size_t, std::uint32_t>>& words) {
    Buffer<unsigned char> bytes = encodeDds(countingCube(1, 1, COMPONENT_TYPE::HALF));
    bytes.resize(isExtended ? 148 : 128);
    for (const auto& [offset, value] : words)
        setWord(bytes, offset, value);
    for (std::size_t i = 0; i < 6 * texelSize; ++i)
        bytes.push_back(static_cast<unsigned char>(i + 1));
    return bytes;
}

TEST(DdsFileTest, readsEveryFormatOfColors) {
    using enum COMPONENT_TYPE;
    constexpr auto LINEAR = ovImages::COLOR_ENCODING::LINEAR;
    constexpr auto SRGB = ovImages::COLOR_ENCODING::SRGB;
    struct Case {
        std::uint32_t format;
        std::size_t texelSize;
        COMPONENT_TYPE type;
        unsigned int channels;
        ovImages::COLOR_ENCODING encoding;
        Buffer<unsigned char> first; ///< bytes of the first texel; none: those of the file
    };
    const Case cases[] = {{2, 16, FLOAT, 4, LINEAR, {}},
                          {6, 12, FLOAT, 3, LINEAR, {}},
                          {10, 8, HALF, 4, LINEAR, {}},
                          {16, 8, FLOAT, 3, LINEAR, {}},
                          {28, 4, UINT8, 4, LINEAR, {}},
                          {29, 4, UINT8, 4, SRGB, {}},
                          {34, 4, HALF, 3, LINEAR, {}},
                          {41, 4, FLOAT, 1, LINEAR, {}},
                          {49, 2, UINT8, 3, LINEAR, {1, 2, 0}},
                          {54, 2, HALF, 1, LINEAR, {}},
                          {61, 1, UINT8, 1, LINEAR, {}},
                          {87, 4, UINT8, 4, LINEAR, {3, 2, 1, 4}},
                          {88, 4, UINT8, 4, LINEAR, {3, 2, 1, 255}},
                          {91, 4, UINT8, 4, SRGB, {3, 2, 1, 4}},
                          {93, 4, UINT8, 4, SRGB, {3, 2, 1, 255}}};
    for (const Case& row : cases) {
        CubeMap cube;
        String error;
        ASSERT_TRUE(decodeDds(fileOfOneTexel(row.texelSize, true, {{128, row.format}}), cube, error))
            << row.format << ": " << error;
        const ovImages::Image& mip = cube.mips.front();
        EXPECT_EQ(mip.getComponentType(), row.type) << row.format;
        EXPECT_EQ(mip.getChannels(), row.channels) << row.format;
        EXPECT_EQ(mip.getEncoding(), row.encoding) << row.format;
        EXPECT_EQ(mip.getBytes()[0], row.first.empty() ? 1 : row.first[0]) << row.format;
        for (std::size_t i = 0; i < row.first.size(); ++i)
            EXPECT_EQ(mip.getBytes()[i], row.first[i]) << row.format << ", " << i;
    }
}

TEST(DdsFileTest, readsOldCodesAndMasks) {
    using enum COMPONENT_TYPE;
    struct Case {
        std::size_t texelSize;
        Buffer<std::pair<std::size_t, std::uint32_t>> words;
        COMPONENT_TYPE type;
        Buffer<unsigned char> first;
    };
    const auto masks = [](std::uint32_t flags, std::uint32_t bits, std::uint32_t red, std::uint32_t green,
                          std::uint32_t blue, std::uint32_t alpha) {
        return Buffer<std::pair<std::size_t, std::uint32_t>>{{80, flags}, {84, 0},     {88, bits},  {92, red},
                                                             {96, green}, {100, blue}, {104, alpha}};
    };
    const Case cases[] = {{2, {{84, 111}}, HALF, {1, 2}},
                          {4, {{84, 112}}, HALF, {1, 2, 3, 4, 0, 0}},
                          {4, {{84, 114}}, FLOAT, {1, 2, 3, 4}},
                          {8, {{84, 115}}, FLOAT, {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0}},
                          {4, masks(0x41, 32, 0xff0000, 0xff00, 0xff, 0xff000000), UINT8, {3, 2, 1, 4}},
                          {4, masks(0x40, 32, 0xff0000, 0xff00, 0xff, 0), UINT8, {3, 2, 1, 255}},
                          {4, masks(0x41, 32, 0xff, 0xff00, 0xff0000, 0xff000000), UINT8, {1, 2, 3, 4}},
                          {3, masks(0x40, 24, 0xff0000, 0xff00, 0xff, 0), UINT8, {3, 2, 1}},
                          {1, masks(0x20000, 8, 0xff, 0, 0, 0), UINT8, {1}},
                          {2, masks(0x20001, 16, 0xff, 0, 0, 0xff00), UINT8, {1, 2}}};
    for (const Case& row : cases) {
        CubeMap cube;
        String error;
        ASSERT_TRUE(decodeDds(fileOfOneTexel(row.texelSize, false, row.words), cube, error)) << error;
        const ovImages::Image& mip = cube.mips.front();
        EXPECT_EQ(mip.getComponentType(), row.type);
        EXPECT_EQ(mip.getEncoding(),
                  row.type == UINT8 ? ovImages::COLOR_ENCODING::SRGB : ovImages::COLOR_ENCODING::LINEAR);
        ASSERT_EQ(mip.getBytes().size(), 6 * row.first.size());
        EXPECT_TRUE(std::ranges::equal(mip.getBytes().first(row.first.size()), row.first));
    }
    for (const auto& words :
         {masks(0x40, 16, 0xf800, 0x7e0, 0x1f, 0), masks(0x41, 32, 0xff0000, 0xff00, 0xff, 0xff),
          masks(0x40, 32, 0xff00, 0xff, 0xff0000, 0), masks(0x20000, 16, 0xffff, 0, 0, 0),
          masks(0, 8, 0xff, 0, 0, 0)}) {
        CubeMap cube;
        String error;
        EXPECT_FALSE(decodeDds(fileOfOneTexel(4, false, words), cube, error));
        EXPECT_NE(error.find("no floats, half floats or 8 bits"), String::npos) << error;
    }
}

TEST(DdsFileTest, everyWrongHeaderIsToldAndChangesNothing) {
    const WrongWord cases[] = {
        {0, 0x474e5089, "no DDS file"},
        {4, 123, "no DDS file"},
        {76, 31, "no DDS file"},
        {12, 5, "faces have 4 x 5 texels"},
        {16, 0, "faces have 0 x 4 texels"},
        {16, 0xffffffff, "faces have 4294967295 x 4 texels"},
        {28, 4, "it tells of 4 mips; 4 texels a side have 1 to 3"},
        {28, 0xffffffff, "it tells of 4294967295 mips"},
        {28, 2, "bytes where its header tells of"},
        {80, 0x41, "no floats, half floats or 8 bits"},
        {84, 0x31545844, "no floats, half floats or 8 bits"}, // DXT1
        {84, 113, "bytes where its header tells of"},         // the extension counts as texels
        {128, 71, "DXGI format 71"},
        {132, 4, "no cube"},
        {136, 0, "no cube"},
        {140, 2, "or several"},
    };
    expectRefused(encodeDds(countingCube(4, 3, COMPONENT_TYPE::HALF)), decodeDds, cases);
}

TEST(DdsFileTest, anyOtherLengthIsRefused) {
    expectNoOtherLength(encodeDds(countingCube(2, 2, COMPONENT_TYPE::HALF)), decodeDds);
}

TEST(DdsFileTest, writesNothingButWholeCubes) {
    EXPECT_TRUE(encodeDds(CubeMap()).empty());
}

} // namespace
