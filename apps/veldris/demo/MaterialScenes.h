// The demo's pictures of materials.
#pragma once

#include <veldris/demo/DemoSet.h>

namespace veldris {

/// Draws every picture of materials, one after another, and hands each on.
/// @param only the name of the only picture to draw; empty: all
/// @param take stops by returning false, with one line in error
/// @return false with one line in error
bool drawMaterialPictures(Session& session, unsigned int width, unsigned int height,
                          ovMemory::StringView only, const TakePicture& take, ovMemory::String& error);

/// The names of those pictures.
ovMemory::Buffer<ovMemory::StringView> materialPictureNames();

} // namespace veldris
