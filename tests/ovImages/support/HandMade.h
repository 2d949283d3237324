// Image files written byte by byte from their standards, without any library.
#pragma once

#include <ovMemory/Memory.h>

#include <cstdint>

namespace handMade {

using Bytes = ovMemory::Buffer<unsigned char>;

/// Bytes of a text.
Bytes fromText(ovMemory::StringView text);

/// Joins pieces.
Bytes join(ovMemory::BufferView<const Bytes> pieces);

struct PngChunk {
    ovMemory::String type;
    Bytes data;
};

struct PngHeader {
    std::uint32_t width;
    std::uint32_t height;
    unsigned char bitDepth;
    unsigned char colorType;
    unsigned char interlace = 0;
};

/// A PNG whose pixels are stored without compression. Rows are in the file's layout, without filter bytes;
/// each gets filter 0. Chunks go between header and pixels.
Bytes makePng(const PngHeader& header, const ovMemory::Buffer<Bytes>& rows,
              const ovMemory::Buffer<PngChunk>& chunks = {});

/// The rows of the seven Adam7 passes of a picture of whole-byte pixels given row by row.
ovMemory::Buffer<Bytes> splitAdam7(const ovMemory::Buffer<Bytes>& rows, std::size_t pixelSize);

struct JpegSegment {
    unsigned char marker;
    Bytes data;
};

/// A baseline JPEG of 8 x 8 blocks of flat colour: every component's sample is exactly what is given, since
/// only the average of each block is coded, with a step of 8 that the transform divides by 8.
/// @param blocks component values, block after block, row after row
Bytes makeJpeg(unsigned blocksAcross, unsigned blocksDown, unsigned components, const Bytes& blocks,
               const ovMemory::Buffer<JpegSegment>& segments = {});

/// An Adobe segment that says how colours are transformed: 0 not, 1 YCbCr, 2 YCCK.
JpegSegment makeAdobeSegment(unsigned char transform);

/// A TIFF block with nothing but the orientation.
Bytes makeExif(unsigned orientation, bool isBigEndian);

/// Stores a 32-bit number, most significant byte first.
void putBig32(Bytes& bytes, std::uint32_t value);

} // namespace handMade
