// The demo's pictures of depth of field.
#pragma once

#include <veldris/demo/DemoSet.h>

namespace veldris {

/// Draws every picture of depth of field, one after another, and hands each on: a sheet of six frames, two in
/// a row, in which the focus moves along a row of six spheres from the first to the last. The spheres stand
/// in even distances from left to right, farther and farther away.
/// @param only the name of the only picture to draw; empty: all
/// @param take stops by returning false, with one line in error @return false with one line in error
bool drawFocusPictures(Session& session, unsigned int width, unsigned int height, ovMemory::StringView only,
                       const TakePicture& take, ovMemory::String& error);

/// The names of those pictures.
ovMemory::Buffer<ovMemory::StringView> focusPictureNames();

} // namespace veldris
