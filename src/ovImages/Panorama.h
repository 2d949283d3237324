// Turning and mirroring of panoramas by longitude and latitude.
#pragma once

#include <cstddef>
#include <ovImages/Image.h>

namespace ovImages {

// Rows of a panorama are latitudes, columns longitudes, and behind the last column comes the first one again.
// Columns are moved as they are, bit by bit, whatever their components: nothing is interpolated, so that no
// sun is dimmed and every turn can be taken back.

/// Mirrors a panorama in place: its columns are in reverse order. Mirroring twice changes nothing; neither
/// does mirroring the empty picture.
OV_API void mirrorPanorama(Image& panorama);

/// Turns a panorama in place: what stood in column x stands in column x + columns, going on at the other
/// edge.
/// @param columns any number; below 0 it turns towards smaller columns. Turning by k and then by -k changes
///        nothing; neither does turning the empty picture
OV_API void turnPanorama(Image& panorama, std::ptrdiff_t columns);

/// The whole columns that are nearest to a turn; halves are rounded away from 0, so that an angle and its
/// opposite take each other back.
/// @param width of the panorama in pixels
/// @param degrees any; whole turns are left out. What is not finite counts as 0
OV_API std::ptrdiff_t getColumnsOfTurn(unsigned width, double degrees);

} // namespace ovImages
