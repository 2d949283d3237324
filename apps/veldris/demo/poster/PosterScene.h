// The demo's poster: standing stones on a hill in the last light, before mountains.
#pragma once

#include <veldris/demo/DemoSet.h>

namespace veldris {

/// Draws the poster and hands it on: physically based materials under an atmosphere, whose sun casts shadows,
/// with ambient occlusion, aerial perspective, tone mapping, FXAA and a little grain.
/// @param only the name of the only picture to draw; empty: all @return false with one line in error
bool drawPoster(Session& session, unsigned int width, unsigned int height, ovMemory::StringView only,
                const TakePicture& take, ovMemory::String& error);

/// The name of that picture.
ovMemory::Buffer<ovMemory::StringView> posterNames();

} // namespace veldris
