#include <veldris/sky/SkyPlace.h>

#include <cmath>
#include <cstdio>
#include <fmt/format.h>
#include <numbers>
#include <optional>
#include <veldris/scene/SceneCamera.h>

namespace veldris {

using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr double DEGREE = std::numbers::pi / 180.0;
constexpr double HOURS_A_DAY = 24.0;

/// Hours of a text such as 6:30; nothing when it is none.
std::optional<double> hoursOf(const String& text) {
    unsigned int hours = 0;
    unsigned int minutes = 0;
    int length = 0;
    const bool isTime = std::sscanf(text.c_str(), "%2u:%2u%n", &hours, &minutes, &length) == 2 &&
                        static_cast<std::size_t>(length) == text.size() && minutes < 60 &&
                        60 * hours + minutes <= 24 * 60;
    return isTime ? std::optional(hours + minutes / 60.0) : std::nullopt;
}

/// 0 at the first frame, 1 at the last.
double shareOf(unsigned int frame, unsigned int frames) {
    return frames > 1 ? static_cast<double>(frame) / (frames - 1) : 0.0;
}

bool planTimes(const SunWay& way, double from, ovMemory::Buffer<SkyPlace>& places, String& error) {
    auto to = hoursOf(way.to);
    if (!to) {
        error = fmt::format("--to '{}' is no time as --from '{}' is; give HH:MM from 0:00 to 24:00.", way.to,
                            way.from);
        return false;
    }
    if (*to < from)
        *to += HOURS_A_DAY;
    for (unsigned int i = 0; i < way.frames; ++i)
        places.push_back(
            sunAtTime(std::lerp(from, *to, shareOf(i, way.frames)), way.latitude, way.dayOfYear));
    return true;
}

} // namespace

ovMaths::Vector directionOf(const SkyPlace& place) {
    const double elevation = place.elevation * DEGREE;
    const double azimuth = place.azimuth * DEGREE;
    // An eye that looks along +x has -z on its right.
    return {static_cast<float>(std::cos(elevation) * std::cos(azimuth)),
            static_cast<float>(std::sin(elevation)),
            static_cast<float>(-std::cos(elevation) * std::sin(azimuth))};
}

bool readSkyPlace(StringView option, StringView text, SkyPlace& place, String& error) {
    constexpr float STEEPEST = 90.0f;
    const auto numbers = parseNumbers(text);
    if (numbers && numbers->size() == 2 && std::abs((*numbers)[0]) <= STEEPEST) {
        place = {(*numbers)[0], (*numbers)[1]};
        return true;
    }
    error =
        fmt::format("{} '{}' is not ELEVATION,AZIMUTH in degrees with an elevation from -90 to 90, such as "
                    "30,180.",
                    option, text);
    return false;
}

SkyPlace sunAtTime(double hours, double latitude, unsigned int dayOfYear) {
    const double declination = 23.45 * DEGREE * std::sin(360.0 * DEGREE * (284.0 + dayOfYear) / 365.0);
    const double hourAngle = (hours - 12.0) * 360.0 / HOURS_A_DAY * DEGREE;
    const double north = std::sin(declination) * std::cos(latitude * DEGREE) -
                         std::cos(declination) * std::sin(latitude * DEGREE) * std::cos(hourAngle);
    const double east = -std::cos(declination) * std::sin(hourAngle);
    const double up = std::sin(declination) * std::sin(latitude * DEGREE) +
                      std::cos(declination) * std::cos(latitude * DEGREE) * std::cos(hourAngle);
    const double azimuth = std::atan2(east, north) / DEGREE;
    return {std::atan2(up, std::hypot(north, east)) / DEGREE, azimuth < 0.0 ? azimuth + 360.0 : azimuth};
}

bool planSunWay(const SunWay& way, ovMemory::Buffer<SkyPlace>& places, String& error) {
    places.clear();
    if (const auto from = hoursOf(way.from))
        return planTimes(way, *from, places, error);
    SkyPlace from;
    SkyPlace to;
    if (!readSkyPlace("--from", way.from, from, error)) {
        error.pop_back();
        error += ", and no time such as 6:30.";
        return false;
    }
    if (!readSkyPlace("--to", way.to, to, error))
        return false;
    for (unsigned int i = 0; i < way.frames; ++i) {
        const double share = shareOf(i, way.frames);
        places.push_back(
            {std::lerp(from.elevation, to.elevation, share), std::lerp(from.azimuth, to.azimuth, share)});
    }
    return true;
}

} // namespace veldris
