// Pictures into other component types, channel counts and colour encodings.
#pragma once

#include <ovImages/Image.h>

namespace ovImages {

/// The sRGB transfer function of IEC 61966-2-1: v / 12.92 up to 0.04045, else ((v + 0.055) / 1.055)^2.4. Goes
/// on beyond 0..1: the straight piece below, the curve above. NaN stays NaN.
OV_API float srgbToLinear(float encoded);

/// The inverse: 12.92 v up to 0.0031308, else 1.055 v^(1/2.4) - 0.055.
OV_API float linearToSrgb(float linear);

/// A copy with other components, channels and encoding.
///
/// Channels (1 grey, 2 grey + alpha, 3 RGB, 4 RGBA): grey is replicated to RGB; RGB becomes the luminance
/// 0.2126 R + 0.7152 G + 0.0722 B (ITU-R BT.709) of the linear colour; alpha that is not there is 1; alpha
/// that has no place is dropped. Encoding: sRGB is decoded or encoded as above where source and target
/// differ; alpha never is. Types: integers clamp to 0..1, round to nearest and take NaN as 0. Half clamps
/// what lies beyond +-65504, infinity included. Half and float keep NaN, float keeps everything. What has not
/// changed its type and channels is copied bit by bit.
///
/// @param channels 1 to 4
/// @param warning when given, set to a line that counts the components clamped to half and the NaN made 0, or
///                cleared when there were none
/// @return the empty picture when the view is not valid (isValid), channels is out of range or the memory or
///         MAX_IMAGE_BYTES does not suffice
OV_API Image convertImage(const ImageView& source, COMPONENT_TYPE type, unsigned channels,
                          COLOR_ENCODING encoding, ovMemory::String* warning = nullptr);

/// What conversions could not store as it was.
struct ConversionLosses {
    std::size_t clampedToHalf = 0; ///< finite or infinite values beyond what half holds
    std::size_t nanToZero = 0;     ///< NaN stored in an integer type
};

/// The line that convertImage() warns with; empty without losses.
OV_API ovMemory::String describeLosses(const ConversionLosses& losses);

/// Converts as convertImage() does into rows of a picture that is there, so that a large one is made piece by
/// piece.
/// @param firstRow of the target that the source's first row goes to
/// @param losses are added to what it holds
/// @return false, changing nothing, when the source is not valid, has another width or more rows than the
///         target has from there on, or the memory does not suffice
OV_API bool convertRows(const ImageView& source, Image& target, unsigned firstRow, ConversionLosses& losses);

} // namespace ovImages
