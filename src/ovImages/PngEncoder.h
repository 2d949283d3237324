// Portable Network Graphics (ISO/IEC 15948).
#pragma once

#include <ovImages/Encoder.h>

namespace ovImages {

/// PNG: 8 and 16 bits, 1 to 4 channels, lossless.
///
/// Decoding takes every colour type, bit depth and interlacing. Grey of fewer than 8 bits is scaled to 8;
/// palettes become RGB; transparent colours and palette entries become an alpha channel; EXIF orientation is
/// applied. The picture is SRGB, but LINEAR when the file has a gAMA chunk of 1.0 and neither sRGB nor ICC
/// profile; another gAMA is read as sRGB with a warning.
///
/// Encoding takes UINT8 and UINT16, and marks the meaning of the numbers (sRGB chunk, or gAMA 1.0).
class OV_API PngEncoder : public Encoder {
public:
    ovMemory::StringView getName() const override;
    ovMemory::BufferView<const ovMemory::StringView> getExtensions() const override;
    bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const override;
    DecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                        const DecodeOptions& options = {}) const override;
    EncodeResult encode(const ImageView& view, const EncodeOptions& options = {}) const override;
};

} // namespace ovImages
