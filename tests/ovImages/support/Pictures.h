// Pictures to test with, and how they compare.
#pragma once

#include <ovImages/Image.h>

namespace pictures {

/// A picture whose components all differ from their neighbours, the same each time.
ovImages::Image makePattern(unsigned width, unsigned height, unsigned channels, ovImages::COMPONENT_TYPE type,
                            ovImages::COLOR_ENCODING encoding);

/// A smooth one, as lossy formats like it, in 8 bits.
ovImages::Image makeGradient(unsigned width, unsigned height, unsigned channels);

/// Expects the same shape, meaning and bytes.
void expectEqual(const ovImages::Image& actual, const ovImages::Image& expected);

/// The largest difference of two buffers of bytes; 256 when their sizes differ.
int getLargestDifference(ovMemory::BufferView<const unsigned char> a,
                         ovMemory::BufferView<const unsigned char> b);

/// The stb_image decoder's opinion of a PNG or JPEG, in its own channels: a decoder of another maker.
ovImages::Image decodeWithStb(ovMemory::BufferView<const unsigned char> file, ovImages::COMPONENT_TYPE type);

} // namespace pictures
