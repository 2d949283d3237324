// The diffuse light of environments, every texel counted by the part of the sphere that it covers.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovVeldris/environment/irradiance/IrradianceTransform.h>
#include <ovVeldris/environment/light/EnvironmentTexels.h>

namespace ovVeldris {

/// The projection of an environment onto the spherical harmonics of bands 0 to 2: the sum over all texels of
/// light times solid angle times basis function in the middle of the texel, in 64-bit floats, on all cores,
/// in an order that does not depend on them. Unlike IrradianceTransform it is exact in the level and has no
/// offset. The axes are those of the environment's directions, for panoramas too.
OV_API IrradianceCoefficients projectEnvironment(const EnvironmentTexels& environment);

/// The irradiance over pi in the middle of each texel of a cube: four floats a pixel, alpha 1, six faces
/// below each other. Empty when memory does not suffice. @param side texels a side of a face, 1 or more
OV_API ovImages::Image drawIrradianceCube(const IrradianceCoefficients& coefficients, unsigned int side,
                                          const ovCommon::WorkProgress& progress = {});

} // namespace ovVeldris
