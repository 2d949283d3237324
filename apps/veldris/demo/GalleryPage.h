// The page that shows the demo's pictures.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// One measured pass.
struct GalleryPass {
    ovMemory::String name;
    double milliseconds = 0.0;
};

/// A picture, beside the one that it was made from if there is one. Files are relative to the page.
struct GalleryEntry {
    ovMemory::String title;
    ovMemory::String summary;    ///< what is to be seen
    ovMemory::String command;    ///< that draws it again, in the folder of the page
    ovMemory::String beforeFile; ///< empty: the picture stands alone
    ovMemory::String afterFile;
    ovMemory::Buffer<GalleryPass> passes; ///< none: nothing was measured
};

/// What stands above the pictures.
struct GalleryHeader {
    ovMemory::String device;
    ovMemory::String language;
    ovMemory::String timingMethod;
    unsigned int width = 0;
    unsigned int height = 0;
};

/// Passes with their times, those of one name together: "clear 0.210 ms, scene 12.300 ms; 12.510 ms in all".
ovMemory::String passesText(const ovMemory::Buffer<GalleryPass>& passes);

/// A page of HTML that needs no other file except the pictures.
ovMemory::String galleryPage(const GalleryHeader& header, const ovMemory::Buffer<GalleryEntry>& entries);

} // namespace veldris
