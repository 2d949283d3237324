// The picture that the demo's effects are shown on.
#pragma once

#include <ovImages/Image.h>

namespace veldris {

/// Draws a small scene of high dynamic range on the CPU, so that the demo needs no data: matte, mirroring and
/// glowing spheres on a chequered ground under a low sun (some 20,000 times a matte white), and a chart below
/// of eight hues over sixteen stops. Four floats a pixel, scene-linear; the same bits on every run.
/// @param width, height pixels, above 0
ovImages::Image drawDemoScene(unsigned int width, unsigned int height);

} // namespace veldris
