// Cubes as pictures in memory.
#pragma once

#include <array>
#include <ovImages/Image.h>
#include <ovMemory/Memory.h>

namespace veldris {

constexpr unsigned int FACE_COUNT = 6;
/// Red, green, blue and alpha.
constexpr unsigned int CUBE_CHANNELS = 4;

/// What {face} in the name of a file stands for, in the order of the faces: +X, -X, +Y, -Y, +Z, -Z.
inline constexpr std::array<ovMemory::StringView, FACE_COUNT> FACE_NAMES = {"px", "nx", "py",
                                                                            "ny", "pz", "nz"};

/// A cube with its mips. Each mip is one picture: the six faces below each other, in Direct3D's layout, so
/// that it is six times as high as it is wide.
struct CubeMap {
    ovMemory::Buffer<ovImages::Image> mips;

    /// Pixels a side of a face of the largest mip; 0 without one.
    unsigned int getSide() const { return mips.empty() ? 0 : mips.front().getWidth(); }
};

/// One face of a mip, as long as the mip lives and keeps its pixels.
ovImages::ImageView faceOf(const ovImages::Image& mip, unsigned int face);

/// Where a face goes that is to be written.
ovMemory::BufferView<unsigned char> faceBytesOf(ovImages::Image& mip, unsigned int face);

} // namespace veldris
