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

/// A photographed panorama as the library reads panoramas, or the other way round: columns are in reverse
/// order. In photographs what lies to the right has the larger column; the library's longitudes grow towards
/// +z, which for an eye that looks along +x lies to the left. Without this, writing in a picture would be
/// mirrored.
/// @param degrees by which the surroundings are turned to the right, in whole columns
/// @return four floats a pixel, scene-linear; the empty picture when memory does not suffice
ovImages::Image turnedPhotograph(const ovImages::ImageView& photograph, float degrees = 0.0f);

/// The same in place, whatever the pixels are.
void turnPhotograph(ovImages::Image& photograph, float degrees = 0.0f);

/// A dark room with two large lamps at the sides, a bright one above and a window behind.
ovMaths::Vector studioRadiance(const ovMaths::Vector& direction);

/// An evening without sun: a red horizon on one side under a dark sky.
ovMaths::Vector duskRadiance(const ovMaths::Vector& direction);

} // namespace veldris
