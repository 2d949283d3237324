#include <veldris/demo/Noise.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace veldris {

using ovMaths::Vector;

namespace {

/// 0 to 1 for a corner of the lattice (the finaliser of MurmurHash3).
float cornerNoise(int x, int y, int z) {
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1u +
                      static_cast<std::uint32_t>(y) * 0xC2B2AE35u +
                      static_cast<std::uint32_t>(z) * 0x85EBCA77u;
    h = (h ^ (h >> 16)) * 0x85EBCA6Bu;
    h = (h ^ (h >> 13)) * 0xC2B2AE35u;
    return static_cast<float>((h ^ (h >> 16)) >> 8) / 16777216.0f;
}

float fade(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

} // namespace

float smoothNoise(const Vector& place) {
    const int x = static_cast<int>(std::floor(place.x));
    const int y = static_cast<int>(std::floor(place.y));
    const int z = static_cast<int>(std::floor(place.z));
    const float u = fade(place.x - static_cast<float>(x));
    const float v = fade(place.y - static_cast<float>(y));
    const float w = fade(place.z - static_cast<float>(z));
    const auto row = [&](int j, int k) {
        return std::lerp(cornerNoise(x, y + j, z + k), cornerNoise(x + 1, y + j, z + k), u);
    };
    const auto layer = [&](int k) { return std::lerp(row(0, k), row(1, k), v); };
    return std::lerp(layer(0), layer(1), w);
}

float fractalNoise(const Vector& place, unsigned int octaves) {
    float sum = 0.0f;
    float most = 0.0f;
    float amplitude = 1.0f;
    Vector at = place;
    for (unsigned int octave = 0; octave < octaves; ++octave) {
        sum += amplitude * smoothNoise(at);
        most += amplitude;
        amplitude *= 0.5f;
        // Moved, so that the lattices of octaves do not meet in one corner.
        at = at * 2.0f + Vector(17.3f, 5.1f, -11.7f);
    }
    return most > 0.0f ? sum / most : 0.0f;
}

Vector mixColors(const Vector& first, const Vector& second, float share) {
    const float t = std::clamp(share, 0.0f, 1.0f);
    return first * (1.0f - t) + second * t;
}

} // namespace veldris
