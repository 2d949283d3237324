// Places in the sky, and the sun's way over it.
#pragma once

#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace veldris {

/// A place in the sky in degrees. The azimuth grows clockwise, seen from above. At 0 is the middle of a
/// panorama, which is north where the sun follows the time, and +x of a model's file; at 90 is +z, the
/// model's front.
struct SkyPlace {
    double elevation = 0.0; ///< above the horizon, -90 to 90
    double azimuth = 0.0;
};

/// Towards a place, length 1, in the library's space.
ovMaths::Vector directionOf(const SkyPlace& place);

/// Reads ELEVATION,AZIMUTH. @param option named in error @return false with one line in error
bool readSkyPlace(ovMemory::StringView option, ovMemory::StringView text, SkyPlace& place,
                  ovMemory::String& error);

/// Where the sun stands at a time of a day, from north over east.
/// @param hours solar time: at 12 the sun is highest @param latitude degrees, north above 0
/// @param dayOfYear from 1 @return the azimuth from 0 to 360; source: Duffie, Beckman: "Solar Engineering of
/// Thermal Processes", equations 1.6.1a (Cooper 1969) and 1.6.5
SkyPlace sunAtTime(double hours, double latitude, unsigned int dayOfYear);

/// A way of the sun as a user gives it.
struct SunWay {
    ovMemory::String from; ///< ELEVATION,AZIMUTH, or a time HH:MM
    ovMemory::String to;   ///< of the same kind
    unsigned int frames = 1;
    double latitude = 45.0;
    unsigned int dayOfYear = 81; ///< the equinox, when the sun is up from 6 to 18
};

/// The sun's place in each frame, the first and the last where they are given. Times go on past midnight;
/// elevation and azimuth change evenly. @return false with one line in error
bool planSunWay(const SunWay& way, ovMemory::Buffer<SkyPlace>& places, ovMemory::String& error);

} // namespace veldris
