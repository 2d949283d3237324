// The kernel of a blur: weights of a row of Pascal's triangle, merged for bilinear fetches.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// The largest radius whose kernel doubles hold: from 511 on the sum of the weights, 2^(2 radius + 2), is
/// infinite.
inline constexpr unsigned int MAX_BLUR_RADIUS = 510;

/// Fetches of a pass of a blur. Each but the centre of an even radius stands for two neighbouring texels: the
/// hardware's filter mixes them when it reads between them.
struct BlurTaps {
    /// How far the fetch is from the nearer of its two texels towards the farther one, in texels.
    ovMemory::Buffer<double> offsets;
    /// The share of the fetch in the sum. Each fetch is made on both sides of the centre, but that of the
    /// centre of an even radius, which comes first and once.
    ovMemory::Buffer<double> weights;
};

/// The weights of the centre (first) and of the texels on one side of it: row 2 radius + 2 of Pascal's
/// triangle without the 1 at either end, divided by its sum. It approaches a Gaussian whose variance is
/// (radius + 1) / 2 texels squared (de Moivre, 1733).
/// @param radius texels on each side, at most MAX_BLUR_RADIUS
OV_API ovMemory::Buffer<double> computeBlurWeights(unsigned int radius);

/// Merges the weights of neighbours a and b into one fetch of the weight a + b, at b / (a + b) of the way. Of
/// an odd radius the centre belongs to a pair too and is fetched from both sides, each time with half of its
/// weight.
/// @param weights those of computeBlurWeights()
OV_API BlurTaps mergeBlurTaps(const ovMemory::Buffer<double>& weights);

/// The lines of a shader that define the taps: OFFSET_COUNT and WEIGHT_COUNT, and OFFSET_FACTORS and
/// WEIGHT_FACTORS, numbers of six decimals with commas between them. By the rounding the weights of the drawn
/// kernel sum to 1 only within half a millionth a fetch.
OV_API ovMemory::String describeBlurTaps(const BlurTaps& taps);

} // namespace ovVeldris
