// Textures into picture files.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovGraphics {

class Texture;

/// Writes what the device holds of textures to files.
class OV_API TextureSaver {
public:
    /// Writes mip 0 of the first slice in the format of the path's extension: PNG, JPEG, EXR or HDR
    /// (ovImages::savePicture()). Gamma-corrected textures hold sRGB and all others light, which PNG and JPEG
    /// encode.
    /// @param path as of saveToHdr()
    /// @param raw numbers as they are, without encoding or decoding them: masks, normals, what FXAA drew
    /// @return texts that name the texture and the path: a failure for a texture that is not loaded or of a
    ///         format that images cannot hold, an unknown extension, and what cannot be written; a warning of
    ///         what the format could not hold
    static ovMemory::Result save(Texture& texture, ovMemory::StringView path, bool raw = false);

    /// Writes mip 0 of the first slice as a Radiance picture (.hdr), which holds three channels of high
    /// dynamic range: gamma-corrected textures are decoded to light, one and two channels become grey, alpha
    /// is dropped (see ovImages::HdrEncoder).
    /// @param texture loaded, of a format that images can hold
    /// @param path absolute, or relative to the process' current folder; UTF-8. The folder exists; a file of
    ///        that name is replaced as a whole
    /// @return false after one log line of the texture's system
    static bool saveToHdr(Texture& texture, ovMemory::StringView path);
};

} // namespace ovGraphics
