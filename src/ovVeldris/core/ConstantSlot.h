// Slots of the constant buffers of shaders.
#pragma once

#include <ovCommon/Api.h>

namespace ovGraphics {
class Shader;
class ShaderPassMemorySlot;
} // namespace ovGraphics

namespace ovVeldris {

/// A slot of a constant buffer of a shader; the buffer and the slots up to it are added when missing.
OV_API ovGraphics::ShaderPassMemorySlot& constantSlot(ovGraphics::Shader& shader, unsigned int index,
                                                      unsigned int buffer = 0);

} // namespace ovVeldris
