// Cubes as pictures in memory.
#pragma once

#include <ovImages/Image.h>
#include <ovMemory/Memory.h>

namespace ovImages {

inline constexpr unsigned int FACE_COUNT = 6;

/// A cube with its mips. Each mip is one picture: the six faces +X, -X, +Y, -Y, +Z, -Z below each other, in
/// Direct3D's layout, so that it is six times as high as it is wide.
struct CubeMap {
    ovMemory::Buffer<Image> mips;

    /// Pixels a side of a face of the largest mip; 0 without one.
    unsigned int getSide() const { return mips.empty() ? 0 : mips.front().getWidth(); }
};

/// One face of a mip, as long as the mip lives and keeps its pixels.
OV_API ImageView faceOf(const Image& mip, unsigned int face);

/// Where a face goes that is to be written.
OV_API ovMemory::BufferView<unsigned char> faceBytesOf(Image& mip, unsigned int face);

} // namespace ovImages
