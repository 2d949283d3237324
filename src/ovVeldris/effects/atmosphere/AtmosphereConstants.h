// The constants that the march through an atmosphere and its tables share.
#pragma once

#include <ovMemory/Memory.h>
#include <ovVeldris/effects/atmosphere/AtmosphereInfo.h>

namespace ovGraphics {
class Shader;
} // namespace ovGraphics

namespace ovVeldris {

/// Buffer 0: the corners of the camera that renders, in world and in view space.
OV_API void writeCornerConstants(ovGraphics::Shader& shader);
/// Buffer 1: the camera that renders, where the sun stands, and the shadow map. @param withShadows whether
/// the shader was loaded with a shadow map
OV_API void writePixelConstants(ovGraphics::Shader& shader, const AtmosphereEffectInfo& info,
                                bool withShadows);
/// Buffer 2: the planet, its air and its sun.
OV_API void writeAirConstants(ovGraphics::Shader& shader, const AtmosphereEffectInfo& info);

/// A count as shader text: an unsigned literal.
OV_API ovMemory::String toUnsignedLiteral(unsigned int count);
/// A pixel text behind the snippets and the prelude that both share. @param file its author's, for messages
OV_API ovMemory::String assembleAtmosphereText(ovMemory::StringView file, ovMemory::StringView pixelText);
/// The vertex text of both.
OV_API const ovMemory::String& atmosphereVertexText();

} // namespace ovVeldris
