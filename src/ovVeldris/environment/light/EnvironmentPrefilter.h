// What surfaces of every roughness mirror, as the mips of a cube, computed on the CPU.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovVeldris/environment/light/EnvironmentTexels.h>

namespace ovVeldris {

/// Mips of a prefiltered cube: down to 4 x 4 texels. 0 for fewer texels than four.
/// @param side texels a side of a face of the first
OV_API unsigned int countPrefilteredMips(unsigned int side);

/// The mips of a cube that PbsMaterial reads as prefiltered: mip i of M is convolved with the GGX lobe of
/// roughness i / (M - 1), as PbsEnvironmentMapFilter does it, and mip 0 is the environment itself. It is the
/// sum over all texels by exact solid angles, in 32-bit floats, within a hundredth of itself however hard the
/// sun: far texels are summed through a LightTree. The same bits on any number of cores.
///
/// @param side texels a side of a face of the first mip, 4 or more
/// @param progress of all mips but the first, which is quick
/// @return six faces below each other a mip, linear floats with alpha 1; none when memory does not suffice or
///         the side is too small
OV_API ovMemory::Buffer<ovImages::Image> prefilterEnvironment(const EnvironmentTexels& environment,
                                                              unsigned int side,
                                                              const ovCommon::WorkProgress& progress = {});

} // namespace ovVeldris
