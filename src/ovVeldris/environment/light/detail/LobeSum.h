// The innermost loop of prefiltering: lights weighed by a lobe, for several directions at once.
#pragma once

#include <array>
#include <cstddef>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// One light, or the mean of several.
struct PointLight {
    std::array<float, 3> direction = {}; ///< of several the mean, which is a little shorter than 1
    std::array<float, 3> power = {};     ///< red, green and blue: radiance times solid angle
    float variance = 0.0f;               ///< of the directions, along each axis across the mean
};

/// Normals whose sums are made together.
constexpr std::size_t LOBE_LANES = 16;

/// One number for each normal.
using LobeLanes = std::array<float, LOBE_LANES>;

struct LobeSums {
    std::array<LobeLanes, 3> normals = {}; ///< x, y and z
    std::array<LobeLanes, 3> sums = {};    ///< red, green and blue
};

/// The numbers of a GgxLobe that the loop reads.
struct LobeShape {
    float flatness;
    float steepness;
};

/// Adds each light times the lobe's weight(cosine) = max(cosine, 0) / (flatness - steepness cosine)^2 to the
/// sums of each normal. To lights that are means of several it adds the second term of the Taylor series:
/// half the variance times the second derivative.
using AddLights = void (*)(ovMemory::BufferView<const PointLight> lights, const LobeShape& shape,
                           LobeSums& sums);

/// Whether the processor has AVX2 and FMA.
OV_API bool canLobeSumUseAvx2();

/// The loop with these instructions or with those that every processor has. Results differ in the rounding.
OV_API AddLights lobeSumOf(bool useAvx2);

} // namespace ovVeldris
