// Smooth noise and mixed colours for shapes and textures of the demo.
#pragma once

#include <ovMaths/Vector.h>

namespace veldris {

/// Smooth values from 0 to 1 over space, one random value at each whole place and a quintic between them
/// (Perlin: "Improving Noise", SIGGRAPH 2002, for the quintic). The same on every run.
float smoothNoise(const ovMaths::Vector& place);

/// Octaves of smooth noise, each of half the size and half the height of the one before; 0 to 1.
float fractalNoise(const ovMaths::Vector& place, unsigned int octaves);

/// From one colour to another. @param share of the second; below 0 and above 1 as those
ovMaths::Vector mixColors(const ovMaths::Vector& first, const ovMaths::Vector& second, float share);

} // namespace veldris
