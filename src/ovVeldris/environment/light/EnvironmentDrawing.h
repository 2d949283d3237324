// Environments in another shape: cubes and panoramas, finer or coarser than they were.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovVeldris/environment/light/EnvironmentTexels.h>

namespace ovVeldris {

/// Pictures of linear floats with four channels, alpha 1. Texels in between are interpolated on straight
/// lines, over the edges of cubes, the ends of panoramas and their poles too. Where the environment is finer
/// than the picture, each texel is the mean of several places, at least as many as it covers texels: small
/// lights neither come nor go. The empty picture when memory does not suffice.

/// Six faces below each other. @param side texels a side of a face, 1 or more
OV_API ovImages::Image drawEnvironmentCube(const EnvironmentTexels& environment, unsigned int side,
                                           const ovCommon::WorkProgress& progress = {});

/// A panorama twice as wide as high. @param height rows, 1 or more
OV_API ovImages::Image drawEnvironmentPanorama(const EnvironmentTexels& environment, unsigned int height,
                                               const ovCommon::WorkProgress& progress = {});

/// The next mip of six faces below each other, of any number of channels of floats: each texel the mean of
/// the part of the face that it covers, half as many a side, rounded down.
OV_API ovImages::Image halveCube(const ovImages::Image& faces);

} // namespace ovVeldris
