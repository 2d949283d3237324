// Constants of the circle, each rounded to the nearest 32-bit float.
#pragma once

namespace ovMaths {

/// Constants for angles in radians.
struct MathConstants {
    static constexpr float PI = 3.14159265358979323846f;
    /// The square root of PI.
    static constexpr float PI_SQRT = 1.77245385090551602730f;
    /// 2 * PI, a full turn.
    static constexpr float PI_2 = 6.28318530717958647693f;
    /// 4 * PI, the solid angle of the sphere.
    static constexpr float PI_4 = 12.5663706143591729539f;
    static constexpr float PI_OVER_2 = 1.57079632679489661923f;
    static constexpr float PI_OVER_3 = 1.04719755119659774615f;
    static constexpr float PI_OVER_4 = 0.785398163397448309616f;
    static constexpr float PI_OVER_6 = 0.523598775598298873077f;
    static constexpr float PI_OVER_8 = 0.392699081698724154808f;
};

} // namespace ovMaths
