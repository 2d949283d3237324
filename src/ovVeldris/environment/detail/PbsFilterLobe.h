// The directions in which the environment filter looks around a surface's normal.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Light directions of one roughness, the same around every normal.
struct PbsFilterLobe {
    /// xyz: direction of length 1 in the frame of the normal, which is z, so that z is also its weight, above
    /// 0; w: mip of the environment to read, below 0 when mip 0 is too coarse already. At least one.
    ovMemory::Buffer<ovMaths::Vector> samples;
    float weightSum = 0.0f; ///< of all z
};

/// The most samples of a lobe. A lobe has fewer when some lie below the horizon, and one at roughness 0.
constexpr unsigned int PBS_FILTER_SAMPLE_COUNT = 1024;

/// Points of a Hammersley set made denser where the GGX lobe of the roughness is, seen along the normal.
/// Walter et al., "Microfacet Models for Refraction through Rough Surfaces", 2007, equations 33, 35 and 36
/// with alpha = roughness^2; the mips are those of Colbert and Krivanek, "GPU-Based Importance Sampling", GPU
/// Gems 3, 2007.
/// @param roughness 0 to 1
/// @param resolution texels a side of a cube face with texels as large as the environment's, above 0
OV_API PbsFilterLobe computePbsFilterLobe(double roughness, double resolution);

} // namespace ovVeldris
