// What a PBS material's shader is bound to.
#pragma once

#include <ovCommon/Api.h>

namespace ovGraphics {
class Shader;
class System;
} // namespace ovGraphics

namespace ovVeldris {

struct PbsMaterialParameters;

/// Indices of the shader's constant buffers.
inline constexpr unsigned int PBS_PASS_CONSTANTS = 0;
inline constexpr unsigned int PBS_CONSTANTS = 1;

/// Declares the constants, instance values, textures and samplers of a shader that has none. The places of
/// constants that may change while the shader is loaded are written to the parameters.
/// @param parameters with packedTextures filled
OV_API void bindPbsShader(ovGraphics::Shader& shader, PbsMaterialParameters& parameters,
                          ovGraphics::System& graphicsSystem);

} // namespace ovVeldris
