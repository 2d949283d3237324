// Cubes and words for tests of files that hold cubes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
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
