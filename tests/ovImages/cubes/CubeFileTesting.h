// Cubes and words for tests of files that hold cubes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <ovImages/cubes/CubeMap.h>

/// A cube whose bytes count up, so that no two texels next to each other are alike.
inline ovImages::CubeMap countingCube(unsigned int side, unsigned int mipCount,
                                      ovImages::COMPONENT_TYPE type) {
    ovImages::CubeMap cube;
    unsigned char next = 0;
    for (unsigned int mip = 0; mip < mipCount; ++mip) {
        const unsigned int mipSide = std::max(side >> mip, 1u);
        cube.mips.emplace_back(mipSide, mipSide * 6, 4, type, ovImages::COLOR_ENCODING::LINEAR);
        for (unsigned char& byte : cube.mips.back().getBytes())
            byte = next++;
    }
    return cube;
}

/// The word at an offset of bytes.
inline std::uint32_t word(const ovMemory::Buffer<unsigned char>& bytes, std::size_t offset) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof(value)); // the machines of the tests are little-endian
    return value;
}

inline void setWord(ovMemory::Buffer<unsigned char>& bytes, std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

/// How a format's files are read.
using CubeDecoder = bool (*)(ovMemory::BufferView<const unsigned char> bytes, ovImages::CubeMap& cube,
                             ovMemory::String& error);

/// Reads bytes that must give the mips of a cube, bit by bit.
inline void expectReadAs(const ovImages::CubeMap& cube, CubeDecoder decode,
                         const ovMemory::Buffer<unsigned char>& bytes) {
    ovImages::CubeMap back;
    ovMemory::String error = "old";
    ASSERT_TRUE(decode(bytes, back, error)) << error;
    EXPECT_EQ(error, "");
    ASSERT_EQ(back.mips.size(), cube.mips.size());
    for (std::size_t mip = 0; mip < cube.mips.size(); ++mip) {
        EXPECT_EQ(back.mips[mip].getComponentType(), cube.mips[mip].getComponentType());
        EXPECT_TRUE(std::ranges::equal(back.mips[mip].getBytes(), cube.mips[mip].getBytes())) << mip;
    }
}

/// A word of a header that makes a file wrong, and a part of what is told then.
struct WrongWord {
    std::size_t offset;
    std::uint32_t value;
    const char* message;
};

/// Reads a good file with one word changed, for each of them.
inline void expectRefused(const ovMemory::Buffer<unsigned char>& good, CubeDecoder decode,
                          ovMemory::BufferView<const WrongWord> words) {
    for (const WrongWord& wrong : words) {
        ovMemory::Buffer<unsigned char> bytes = good;
        setWord(bytes, wrong.offset, wrong.value);
        ovImages::CubeMap cube;
        ovMemory::String error;
        EXPECT_FALSE(decode(bytes, cube, error)) << wrong.offset << ": " << wrong.message;
        EXPECT_NE(error.find(wrong.message), ovMemory::String::npos) << wrong.offset << ": " << error;
        EXPECT_TRUE(cube.mips.empty());
    }
}

/// Cuts a good file at every length, and appends a few bytes to it.
inline void expectNoOtherLength(const ovMemory::Buffer<unsigned char>& good, CubeDecoder decode) {
    for (std::size_t length = 0; length < good.size() + 9; ++length) {
        ovMemory::Buffer<unsigned char> bytes = good;
        bytes.resize(length);
        ovImages::CubeMap cube;
        ovMemory::String error;
        EXPECT_EQ(decode(bytes, cube, error), length == good.size()) << length;
        EXPECT_EQ(error.empty(), length == good.size()) << length;
    }
}
