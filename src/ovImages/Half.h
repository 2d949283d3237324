// IEEE 754 binary16, the "half" of graphics, to and from float.
#pragma once

#include <ovCommon/Api.h>

#include <cstdint>

namespace ovImages {

/// The largest finite half.
inline constexpr float LARGEST_HALF = 65504.0f;

/// Exact for every half: subnormals, signed zeros, infinities; NaN stays NaN and keeps its payload.
OV_API float halfToFloat(std::uint16_t half);

/// The nearest half, ties to even (IEEE 754-2008, 4.3.1). From 65520 on the result is infinity, below half
/// the smallest subnormal a signed zero; NaN stays NaN, made quiet, with the upper bits of its payload.
/// convertImage, which wants no infinities, clamps first.
OV_API std::uint16_t floatToHalf(float value);

} // namespace ovImages
