// Textures that the demo computes.
#pragma once

#include <functional>
#include <ovGraphics/resources/Texture.h>
#include <ovMaths/Vector.h>

namespace veldris {

/// A texture of side x side texels with mips, each texel computed from its place; 8 bits a channel.
/// @param isColor whether the numbers are colours, encoded as sRGB @param color of a place, 0 to 1 each
/// @return loaded unless the device refuses, which the log tells
ovMemory::UniquePtr<ovGraphics::Texture>
paintTexture(ovGraphics::System& graphics, unsigned int side, bool isColor,
             const std::function<ovMaths::Vector(float u, float v)>& color);

} // namespace veldris
