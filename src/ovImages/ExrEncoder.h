// OpenEXR pictures (.exr).
#pragma once

#include <ovImages/Encoder.h>

namespace ovImages {

/// EXR: half and float, 1 to 4 channels, through the OpenEXR library.
///
/// Decoding takes scanline and tiled files (of a mip-mapped file the largest level) with every compression.
/// The picture is the file's data window, LINEAR; HALF when all channels read are half, else FLOAT (32-bit
/// integers become floats). Which channels:
///  - of the layer that DecodeOptions::layer names, or of the unnamed layer, or of the only layer with
///  colours:
///    R, G, B and A (or red, green, blue, alpha, in any case), or Y and A; Y with RY and BY becomes RGB, as
///    HALF;
///  - with no colours anywhere, the only channel (and A beside it) as grey, such as a depth.
/// Of several parts the first one that this decides is read; a part's name is the name of a layer too. Where
/// it does not decide, the error lists the layers, or the channels of a file without. Deep data and colours
/// of differing resolution are refused. The colours are not converted from the primaries that a file may
/// name.
///
/// Encoding takes HALF and FLOAT, one scanline part with ZIP compression: Y, Y A, R G B or R G B A.
/// Infinities and NaN are kept.
class OV_API ExrEncoder : public Encoder {
public:
    ovMemory::StringView getName() const override;
    ovMemory::BufferView<const ovMemory::StringView> getExtensions() const override;
    bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const override;
    DecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                        const DecodeOptions& options = {}) const override;
    EncodeResult encode(const ImageView& view, const EncodeOptions& options = {}) const override;
};

} // namespace ovImages
