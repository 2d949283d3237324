// The text at the head of a Radiance picture. Internal to the library.
#pragma once

#include <ovImages/Image.h>

#include <array>

namespace ovImages::detail {

/// What the header of a Radiance picture says.
struct HdrHeader {
    unsigned scanlines = 0;      ///< lines as stored
    unsigned scanlineLength = 0; ///< pixels of one
    unsigned orientation = 1;    ///< of the stored raster, in EXIF's numbers (applyOrientation)
    std::array<double, 3> exposure = {1.0, 1.0, 1.0}; ///< that the numbers were multiplied by, per channel
    double gamma = 1.0;                               ///< the numbers were raised to 1 / gamma
    std::size_t size = 0;                             ///< bytes up to the first pixel
};

/// Reads the header at the start of bytes. Empty, or what is wrong.
ovMemory::String readHdrHeader(ovMemory::BufferView<const unsigned char> bytes, HdrHeader& header);

} // namespace ovImages::detail
