// The page that shows the demo's pictures.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// A picture, beside the one that it was made from if there is one. Files are relative to the page.
struct GalleryEntry {
    ovMemory::String title;      ///< of an effect: as --effects takes it
    ovMemory::String summary;    ///< what it does; may be empty
    ovMemory::String beforeFile; ///< empty: the picture stands alone
    ovMemory::String afterFile;
    double milliseconds = 0.0; ///< of its passes
};

/// What stands above the pictures.
struct GalleryHeader {
    ovMemory::String device;
    ovMemory::String language;
    ovMemory::String timingMethod;
    unsigned int width = 0;
    unsigned int height = 0;
};

/// A page of HTML that needs no other file except the pictures.
ovMemory::String galleryPage(const GalleryHeader& header, const ovMemory::Buffer<GalleryEntry>& entries);

} // namespace veldris
