// How much light from an angle counts for what a rough surface mirrors towards its normal.
#pragma once

#include <ovCommon/Api.h>

namespace ovVeldris {

/// The lobe of the prefiltered mips: the density of GGX half vectors times the cosine, seen along the normal
/// (PbsFilterLobe samples the same one). With c the cosine of the angle and alpha = roughness^2 it is
///
///     weight(c) = c / (flatness - steepness c)^2   for c > 0,   steepness = (1 - alpha^2) / 2,
///                                                               flatness = 1 - steepness,
///
/// since the half vector's cosine squared is (1 + c) / 2: neither a root nor a power is left.
struct GgxLobe {
    double steepness = 0.0;
    double flatness = 1.0;
    double integral = 0.0; ///< of the weight over all directions
    /// The lobe's half width as a chord: it falls like 1 / (width^2 + chord^2)^2 around its middle.
    double width = 1.0;
};

/// @param roughness above 0, up to 1
OV_API GgxLobe ggxLobeOf(double roughness);

} // namespace ovVeldris
