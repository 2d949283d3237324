// The demo's pictures of effects that read a scene.
#pragma once

#include <veldris/demo/DemoSet.h>

namespace veldris {

/// Draws every picture of such effects, one after another, and hands each on: ambient occlusion from depth,
/// positions and normals, air over a long valley, and shadows in the air.
/// @param only the name of the only picture to draw; empty: all
/// @param take stops by returning false, with one line in error @return false with one line in error
bool drawSceneEffectPictures(Session& session, unsigned int width, unsigned int height,
                             ovMemory::StringView only, const TakePicture& take, ovMemory::String& error);

/// The names of those pictures.
ovMemory::Buffer<ovMemory::StringView> sceneEffectPictureNames();

} // namespace veldris
