// The tone mapping operators in double precision, as the papers write them.
#pragma once

#include <array>
#include <cmath>
#include <ovMaths/Matrix.h>
#include <ovVeldris/effects/ToneMappingHablesCurve.h>

namespace toneMappingReference {

using Color = std::array<double, 3>;

inline double luminance(const Color& c) {
    return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2];
}

inline Color scaled(const Color& c, double factor) {
    return {c[0] * factor, c[1] * factor, c[2] * factor};
}

inline Color reinhard(const Color& c, const Color& white, bool onLuminance) {
    if (onLuminance) {
        const double L = luminance(c), Lw = luminance(white);
        return scaled(c, (1.0 + L / (Lw * Lw)) / (1.0 + L));
    }
    Color result;
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = c[i] * (1.0 + c[i] / (white[i] * white[i])) / (1.0 + c[i]);
    return result;
}

/// The filmic curve evaluated directly from its descriptor.
class HablesCurve {
public:
    explicit HablesCurve(const ovVeldris::ToneMappingHablesCurveDescriptor& descriptor)
        : _gamma(descriptor.gamma) {
        const double toe = 0.5 * descriptor.toeLength, strength = descriptor.shoulderStrength;
        const double y0 = toe * (1.0 - descriptor.toeStrength);
        const double y1 = y0 + (1.0 - descriptor.shoulderLength) * (1.0 - y0);
        _white = toe + (1.0 - y0) + std::exp2(strength) - 1.0;
        _x0 = toe / _white;
        _x1 = (toe + y1 - y0) / _white;
        _slope = _x1 == _x0 ? 1.0 : (y1 - y0) / (_x1 - _x0);
        _intercept = y0 - _slope * _x0;
        _endX = 1.0 + 2.0 * descriptor.shoulderAngle * strength;
        _endY = std::pow(1.0 + 0.5 * descriptor.shoulderAngle * strength, _gamma);
        _toe = power(_x0, std::max(1e-5, std::pow(y0, _gamma)), slopeAt(_x0));
        _shoulder = power(_endX - _x1, _endY - std::max(1e-5, std::pow(y1, _gamma)), slopeAt(_x1));
        _inverseScale = 1.0 / (_endY - evaluate(_shoulder, _endX - 1.0));
    }

    double operator()(double light) const {
        const double x = light / _white;
        if (x < _x0)
            return evaluate(_toe, x);
        if (x < _x1) {
            const double t = x + _intercept / _slope * _inverseScale;
            return t > 0.0 ? std::pow(_slope * t, _gamma) : 0.0;
        }
        return _endY * _inverseScale - evaluate(_shoulder, _endX * _inverseScale - x);
    }

private:
    /// factor t^exponent
    struct Power {
        double factor, exponent;
    };
    static Power power(double x, double y, double slope) {
        const double exponent = slope * x / y;
        return {y / std::pow(x, exponent), exponent};
    }
    static double evaluate(const Power& p, double t) {
        return t > 0.0 ? p.factor * std::pow(t, p.exponent) : 0.0;
    }
    double slopeAt(double x) const {
        return _gamma * _slope * std::pow(_slope * x + _intercept, _gamma - 1.0);
    }

    double _gamma, _white, _x0, _x1, _slope, _intercept, _endX, _endY, _inverseScale;
    Power _toe, _shoulder;
};

inline Color hables(const Color& c, const ovVeldris::ToneMappingHablesCurveDescriptor& descriptor,
                    bool onLuminance) {
    const HablesCurve curve(descriptor);
    if (!onLuminance)
        return {curve(c[0]), curve(c[1]), curve(c[2])};
    const double L = luminance(c);
    return scaled(c, L == 0.0 ? 0.0 : curve(L) / L);
}

inline Color transformed(const double (&m)[3][3], const Color& c) {
    Color result;
    for (std::size_t row = 0; row < 3; ++row)
        result[row] = m[row][0] * c[0] + m[row][1] * c[1] + m[row][2] * c[2];
    return result;
}

inline Color aces(const Color& c, const ovMaths::Matrix& look) {
    constexpr double TO_ACESCG[3][3] = {{0.6131178129, 0.3411819959, 0.0457873443},
                                        {0.0699340823, 0.9181030375, 0.0119327755},
                                        {0.0204629926, 0.1067686634, 0.8727159106}};
    double lookRows[3][3];
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            lookRows[row][column] = look.m[row][column];
    Color result = transformed(lookRows, transformed(TO_ACESCG, c));
    for (double& x : result) {
        const double numerator = x * x + 1.2813760808003791 * x + 0.015375055634866651;
        const double denominator =
            0.003872079214147382 * x * x + 0.011423370250741206 * x + 0.01664753890994588;
        x = numerator / denominator / 255.0;
    }
    return result;
}

} // namespace toneMappingReference
