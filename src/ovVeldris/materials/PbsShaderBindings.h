// What a PBS material's shader is bound to.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {
class Shader;
class System;
} // namespace ovGraphics

namespace ovVeldris {

struct PbsMaterialParameters;

/// Declares the constants, instance values, textures and samplers of a shader that has none. The places of
/// constants that may change while the shader is loaded are written to the parameters.
/// @param parameters with packedTextures filled
OV_API void bindPbsShader(ovGraphics::Shader& shader, PbsMaterialParameters& parameters,
                          ovGraphics::System& graphicsSystem);

/// The constant that holds a factor: (factor, 0, 0, 0).
ovMaths::Vector toPbsConstant(float factor);
/// The constant that holds alpha and its cut-off.
ovMaths::Vector toPbsAlphaConstant(const PbsMaterialParameters& parameters);

} // namespace ovVeldris
