// The piecewise power curve of the filmic tone mapping operator.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>

namespace ovVeldris {

/// The shape of a filmic curve in six numbers.
///
/// In the ranges given every constant of the curve is finite. Outside them nothing is clamped: the formulas
/// are followed, and where they give NaN, NaN is drawn.
struct ToneMappingHablesCurveDescriptor {
    float toeLength = 0.05f;       ///< how far the toe reaches: above 0, to 1. At 0 there is no toe.
    float toeStrength = 0.05f;     ///< how strongly the toe pulls down: 0 to below 1
    float shoulderLength = 0.05f;  ///< how far the shoulder reaches: above 0, to 1. At 1 nothing is straight.
    float shoulderStrength = 0.1f; ///< extra white range in stops: from 0
    float shoulderAngle = 1.0f;    ///< overshoot of the shoulder: 0 to 1
    float gamma = 1.0f;            ///< power applied to the whole curve: above 0
};

/// The constants of the curve, as the shader reads them, one vector a register:
/// 0: (1 / W, x0, x1), W the white point, x0 and x1 the ends of the toe and of the linear part after scaling
/// by 1 / W; then for each of toe, linear part and shoulder two registers: 1, 3, 5: (offset x, offset y,
/// scale x, scale y); 2, 4, 6: (ln A, B) of y = A x^B.
using ToneMappingHablesCurve = std::array<ovMaths::Vector, 7>;

/// Computes the constants, in 32-bit floats. John Hable, "Filmic Tonemapping with Piecewise Power Curves",
/// 2017. Of the final scaling by the inverse of the curve's value at white only the x offsets of the linear
/// part and the shoulder and the y offset of the shoulder are scaled; the look of the operator depends on it.
OV_API ToneMappingHablesCurve
computeToneMappingHablesCurve(const ToneMappingHablesCurveDescriptor& descriptor);

} // namespace ovVeldris
