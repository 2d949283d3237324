// EXR files written with the OpenEXR library directly, with what the encoder does not write.
#pragma once

#include <ovImages/detail/ExrStreamsInternal.h>

#include <ImfChannelList.h>
#include <ImfHeader.h>

namespace exrFiles {

using Bytes = ovMemory::Buffer<unsigned char>;

struct Channel {
    ovMemory::String name;
    Imf::PixelType type = Imf::HALF;
    int sampling = 1;
};

/// The value that channel number i has at a pixel of the data window: exact in half, float and integers.
float getValue(std::size_t channel, int x, int y);

/// Scanlines of the channels. Compression, data window and the rest as in the header.
Bytes writeScanlines(Imf::Header header, const ovMemory::Buffer<Channel>& channels);

/// The same in tiles of 4 x 3, with a mip chain when asked for, which holds other values than the largest
/// level.
Bytes writeTiles(Imf::Header header, const ovMemory::Buffer<Channel>& channels, bool hasMips);

/// Two scanline parts.
Bytes writeTwoParts(const ovMemory::Buffer<Channel>& first, const ovMemory::Buffer<Channel>& second);

/// A deep scanline file of 2 x 1 pixels.
Bytes writeDeep();

/// Luminance and chroma of a flat colour.
Bytes writeLuminanceChroma(int width, int height, float red, float green, float blue);

} // namespace exrFiles
