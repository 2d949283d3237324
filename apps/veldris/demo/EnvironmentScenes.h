// The demo's pictures of environments.
#pragma once

#include <veldris/demo/MaterialScenes.h>

namespace veldris {

/// Draws every picture of environments, one after another, and hands each on: the same objects under three of
/// them, what filtering makes of one, and the three projections of the image environment effect.
/// @param only the name of the only picture to hand on; empty: all
/// @param take stops by returning false, with one line in error @return false with one line in error
bool drawEnvironmentPictures(Session& session, unsigned int width, unsigned int height,
                             ovMemory::StringView only, const TakePicture& take, ovMemory::String& error);

/// The names of those pictures.
ovMemory::Buffer<ovMemory::StringView> environmentPictureNames();

} // namespace veldris
