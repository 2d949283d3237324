// The textures that tools hand their results over in.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/formats/Enums.h>
#include <ovGraphics/formats/Format.h>

namespace ovGraphics {
class Texture;
}

namespace ovVeldris {

/// What a tool makes of the texture that it is given for its result.
struct ToolTarget {
    ovGraphics::TEXTURE_TYPE type = ovGraphics::TEXTURE_TYPE::TEXTURE_2D;
    ovGraphics::FORMAT format = ovGraphics::FORMAT::R8G8B8A8_UNORM;
    bool gammaCorrected = false;
    unsigned int width = 1;        ///< texels
    unsigned int height = 1;       ///< texels
    unsigned int mipCount = 0;     ///< 0: the full chain
    bool mipsAreGenerated = false; ///< from the first, once that has been drawn
};

/// Turns a texture into a loaded render target of colours. Its other settings become those of a new texture,
/// and texels that were to be uploaded are dropped.
/// @return false for depth formats, nothing changed; or, the texture unloaded, after one log line of the
///         graphics system
OV_API bool loadToolTarget(ovGraphics::Texture& texture, const ToolTarget& target);

/// Whether texels of a format are whole numbers, which no filter can read.
OV_API bool holdsWholeNumbers(ovGraphics::FORMAT format);

} // namespace ovVeldris
