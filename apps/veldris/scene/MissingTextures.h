// Content for the textures that materials name and nobody has loaded.
#pragma once

#include <ovMemory/Memory.h>

namespace ovVeldris {
class PbsMaterial;
}

namespace veldris {

class Progress;

/// Loads every unloaded texture of the surfaces of materials: from the image file that its name is, or as a
/// chequerboard of magenta and black with one warning. Colours are read as they are encoded, everything else
/// as numbers; a texture that is both counts as a colour.
/// @param folder that names are relative to; empty: the process' current folder
/// @param progress is told what is uploading; null: nobody asks
/// @return a warning for each texture that has no file
ovMemory::Buffer<ovMemory::String>
loadMissingTextures(ovMemory::BufferView<ovVeldris::PbsMaterial* const> materials,
                    const ovMemory::String& folder, Progress* progress = nullptr);

} // namespace veldris
