// The page that shows the demo's pictures.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// One effect's picture beside the one it was made from. Files are relative to the page.
struct GalleryEntry {
    ovMemory::String effect; ///< as --effects takes it
    ovMemory::String beforeFile;
    ovMemory::String afterFile;
    double milliseconds = 0.0; ///< of the pass
};

/// What stands above the pictures.
struct GalleryHeader {
    ovMemory::String device;
    ovMemory::String language;
    ovMemory::String timingMethod;
    unsigned int width = 0;
    unsigned int height = 0;
};

/// A page of HTML, whole in itself but for the pictures.
ovMemory::String galleryPage(const GalleryHeader& header, const ovMemory::Buffer<GalleryEntry>& entries);

} // namespace veldris
