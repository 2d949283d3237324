// JPEG (ITU-T T.81) with JFIF and Adobe conventions.
#pragma once

#include <ovImages/Encoder.h>

namespace ovImages {

/// JPEG: 8 bits, grey or RGB, lossy.
///
/// Decoding takes baseline, progressive and arithmetic-coded files, grey (1 channel) and colour (3 channels).
/// CMYK and YCCK become RGB by R = (1 - C)(1 - K) without a colour profile, where files with an Adobe marker
/// store the inverse. The picture is SRGB and upright by its EXIF orientation. Progressive files of more than
/// 500 scans are refused, as they are made to waste time.
///
/// Encoding takes UINT8 up to 65500 pixels a side; 2 and 4 channels lose their alpha. The same picture and
/// options always give the same bytes.
class OV_API JpgEncoder : public Encoder {
public:
    ovMemory::StringView getName() const override;
    ovMemory::BufferView<const ovMemory::StringView> getExtensions() const override;
    bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const override;
    DecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                        const DecodeOptions& options = {}) const override;
    EncodeResult encode(const ImageView& view, const EncodeOptions& options = {}) const override;
};

} // namespace ovImages
