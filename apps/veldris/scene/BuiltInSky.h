// The sky that scenes have when no data is at hand.
#pragma once

#include <ovImages/Image.h>
#include <ovMaths/Vector.h>

namespace veldris {

/// Radiance of a clear low-sun sky over a dull ground, without the sun's disc, in units of a matte white in
/// the sun. @param direction to look along, unit length @param towardsSun unit length
ovMaths::Vector skyRadiance(const ovMaths::Vector& direction, const ovMaths::Vector& towardsSun);

/// The sky and the ground as a panorama by longitude and latitude: the top row looks up, the middle along +x,
/// longitudes grow towards +z. Four floats a pixel, scene-linear. @param width pixels, twice the height
ovImages::Image drawSkyPanorama(unsigned int width, const ovMaths::Vector& towardsSun);

} // namespace veldris
