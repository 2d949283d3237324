// The sun's light behind the air.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>

namespace ovVeldris {

class AtmosphereEffect;

/// The share of the sun's light that comes through the air, red, green and blue, by the coefficients of
/// extinction; 0 where the ground hides the middle of the sun. A ray is straight and its light falls by
/// Beer-Lambert: exp(-optical depth), the optical depth being extinction times density summed along the ray
/// (Hillaire 2020, section 4, equation 2).
/// @param air read for its coefficients; it need not be loaded
/// @param height of the eye in metres; below 1 it is 1, as for the effect
/// @param elevation of the sun in degrees
OV_API ovMaths::Vector sunTransmittance(const AtmosphereEffect& air, double height, double elevation);

/// The light on a surface that faces the sun: what the disc and the air are drawn with, through the air.
OV_API ovMaths::Vector sunIrradiance(const AtmosphereEffect& air, double height, double elevation);

} // namespace ovVeldris
