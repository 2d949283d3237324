// Radiance pictures (.hdr, .pic): RGB of high dynamic range with a shared exponent.
#pragma once

#include <ovImages/Encoder.h>

namespace ovImages {

/// Radiance HDR, the format "32-bit_rle_rgbe" of the Radiance reference manual ("The RADIANCE Picture File
/// Format", G. Ward, 1991).
///
/// Decoding gives FLOAT, LINEAR, 3 channels, the top row first whichever of the eight orientations the file
/// has. Flat pixels, the old run-length encoding (1, 1, 1, count) and the new one by component are read,
/// mixed as the format allows. A mantissa m with exponent e is m 2^(e - 136). What the header says was done
/// to the numbers is undone: they are raised to GAMMA (with a warning), then divided by every EXPOSURE and
/// COLORCORR. XYZ pictures are refused.
///
/// Encoding takes HALF and FLOAT, writes the new run-length encoding (flat where the format demands it),
/// rounds to the nearest mantissa; 1 and 2 channels are replicated, alpha is dropped. Negative numbers and
/// NaN become 0, and numbers beyond 255 x 2^119 become that number. A warning counts them.
class OV_API HdrEncoder : public Encoder {
public:
    ovMemory::StringView getName() const override;
    ovMemory::BufferView<const ovMemory::StringView> getExtensions() const override;
    bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const override;
    DecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                        const DecodeOptions& options = {}) const override;
    EncodeResult encode(const ImageView& view, const EncodeOptions& options = {}) const override;
};

} // namespace ovImages
