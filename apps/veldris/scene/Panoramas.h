// Environments made in code.
#pragma once

#include <functional>
#include <ovImages/Image.h>
#include <ovMaths/Vector.h>

namespace veldris {

/// A panorama by longitude and latitude of a radiance that is given by direction: the top row looks up, the
/// middle along +x, longitudes grow towards +z. Four floats a pixel, scene-linear. @param width pixels, twice
/// the height
ovImages::Image
drawPanorama(unsigned int width,
             const std::function<ovMaths::Vector(const ovMaths::Vector& direction)>& radiance);

/// A dark room with two large lamps at the sides, a bright one above and a window behind.
ovMaths::Vector studioRadiance(const ovMaths::Vector& direction);

/// An evening without sun: a red horizon on one side under a dark sky.
ovMaths::Vector duskRadiance(const ovMaths::Vector& direction);

} // namespace veldris
