// Filtered environments on disk, so that a second run need not filter again.
#pragma once

#include <ovImages/Image.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class System;
class Texture;
} // namespace ovGraphics

namespace veldris {

/// A place on disk for the textures that were made of one environment. Files repeat what they were made of
/// and carry a checksum: what is cut short, damaged or of another environment counts as absent.
class EnvironmentCache {
public:
    /// @param graphics its configuration names the folder; without one nothing is kept
    /// @param settings what else decides the textures, as text
    EnvironmentCache(const ovGraphics::System& graphics, const ovImages::ImageView& panorama,
                     ovMemory::StringView settings);

    /// Fills and loads the textures from the file. @return false when there is none of this many; textures
    /// may then have changed, and are unloaded
    bool load(ovMemory::BufferView<ovGraphics::Texture* const> textures) const;

    /// Keeps loaded textures, all their slices and mips. @return one line when the file cannot be written,
    /// otherwise nothing
    ovMemory::String store(ovMemory::BufferView<ovGraphics::Texture* const> textures) const;

    /// Where the file lies; empty when nothing is kept.
    const ovMemory::String& getPath() const { return _path; }

private:
    ovMemory::String _key;
    ovMemory::String _path;
};

} // namespace veldris
