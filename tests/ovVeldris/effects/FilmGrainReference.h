// The noise of film grain. What a device may round differently is taken as it may be.
#pragma once

#include <cmath>
#include <support/FloatPicture.h>
#include <vector>

namespace filmGrainReference {

constexpr float WEIGHT_X = 23.14069263277926f;
constexpr float WEIGHT_Y = 2.665144142690225f;
constexpr float SCALE = 67890.1234f;

/// The argument of the sine, in single precision with each sum and product rounded.
inline float argumentOf(float x, float y) {
    const volatile float left = x * WEIGHT_X; // volatile: never fused with the sum
    const volatile float right = y * WEIGHT_Y;
    return left + right;
}

/// The hash with an exact sine.
inline double randomOf(float x, float y) {
    const double product = std::sin(double(argumentOf(x, y))) * double(SCALE);
    return product - std::floor(product);
}

/// Every value that the hash has where the sine is off by up to some of its last places.
inline std::vector<float> possibleRandoms(float x, float y, int lastPlaces) {
    const auto exact = float(std::sin(double(argumentOf(x, y))));
    float sine = exact;
    for (int i = 0; i < lastPlaces; ++i)
        sine = std::nextafter(sine, -2.0f);
    std::vector<float> values;
    for (int i = -lastPlaces; i <= lastPlaces; ++i) {
        const float product = sine * SCALE;
        values.push_back(product - std::floor(product));
        sine = std::nextafter(sine, 2.0f);
    }
    return values;
}

/// How far a number from 0 to below 1 is from another, on the circle that the hash wraps around.
inline double distanceOf(double a, double b) {
    const double distance = std::abs(a - b);
    return std::min(distance, 1.0 - distance);
}

} // namespace filmGrainReference
