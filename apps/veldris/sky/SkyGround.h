// The ground below the sky.
#pragma once

#include <ovImages/Image.h>
#include <ovMaths/Vector.h>

namespace veldris {

/// The light that a dull ground gives back, as a panorama of one column: black above the horizon, which lies
/// the lower the higher the eye. Without the air in between: the atmosphere adds that. Its rows are fine
/// enough for the horizon of a picture, and are to be read without interpolation. Four linear floats a pixel.
/// @param radiance red, green and blue @param eyeHeight metres
ovImages::Image drawGroundPanorama(const ovMaths::Vector& radiance, double eyeHeight);

/// The light of the upper half of a sky on a level surface: its radiance times the cosine to the zenith,
/// summed over solid angles. @param faces of a cube below each other, linear floats
ovMaths::Vector levelIrradiance(const ovImages::ImageView& faces);

} // namespace veldris
