// Textures to draw into.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>

namespace ovGraphics {

class Texture;

/// Makes a texture a loaded 2D render target of one mip, whatever it was. What was in it is lost; its name
/// and its hidden flag stay.
/// @param width, height texels, at least 1, at most what the device allows
/// @param format that the device can draw to; of depth for a depth buffer
/// @return false after one log line when the device refuses it; it is then unloaded with its new settings
OV_API bool loadAsRenderTarget(Texture& texture, unsigned int width, unsigned int height, FORMAT format);

} // namespace ovGraphics
