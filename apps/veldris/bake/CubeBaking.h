// Environments turned into cubes and panoramas.
#pragma once

#include <ovCommon/WorkProgress.h>
#include <ovVeldris/environment/irradiance/IrradianceTransform.h>
#include <veldris/bake/EnvironmentInput.h>

namespace veldris {

/// Results are linear floats of four channels, alpha 1, computed on the CPU on all cores. The same input
/// gives the same bits on the same kind of processor. All return false with one line in error when the result
/// is too large or memory does not suffice, and tell progress what share of the longest step is done.

/// An environment as a cube with a full chain of mips. Where the input is finer, it is averaged.
/// @param side texels a side of a face, 1 or more
bool bakeCube(const EnvironmentInput& input, unsigned int side, CubeMap& cube, ovMemory::String& error,
              const ovCommon::WorkProgress& progress = {});

/// The environment as surfaces of rising roughness mirror it, for PbsMaterial::setEnvironmentTexture().
/// @param side texels a side of the largest mip, 4 or more
bool bakePrefiltered(const EnvironmentInput& input, unsigned int side, CubeMap& cube, ovMemory::String& error,
                     const ovCommon::WorkProgress& progress = {});

/// The irradiance over pi of the environment, one mip, for PbsMaterial::setIrradianceTexture().
/// @param coefficients what it was computed from
bool bakeIrradiance(const EnvironmentInput& input, unsigned int side, CubeMap& cube,
                    ovVeldris::IrradianceCoefficients& coefficients, ovMemory::String& error,
                    const ovCommon::WorkProgress& progress = {});

/// A cube as a panorama twice as wide as high. @param input a cube
bool bakePanorama(const EnvironmentInput& input, unsigned int height, ovImages::Image& panorama,
                  ovMemory::String& error, const ovCommon::WorkProgress& progress = {});

} // namespace veldris
