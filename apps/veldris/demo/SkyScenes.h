// The demo's pictures of the sky.
#pragma once

#include <veldris/demo/DemoSet.h>

namespace veldris {

/// Draws every picture of the sky, one after another, and hands each on: a sheet of six heights of the sun,
/// the tables of the air, and objects under a low sun with their shadows.
/// @param only the name of the only picture to draw; empty: all
/// @param take stops by returning false, with one line in error @return false with one line in error
bool drawSkyPictures(Session& session, unsigned int width, unsigned int height, ovMemory::StringView only,
                     const TakePicture& take, ovMemory::String& error);

/// The names of those pictures.
ovMemory::Buffer<ovMemory::StringView> skyPictureNames();

} // namespace veldris
