// The atmosphere once more, in double precision.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <optional>
#include <ovVeldris/effects/atmosphere/AtmosphereInfo.h>
#include <support/FloatPicture.h>

namespace atmosphereReference {

using Three = std::array<double, 3>;

constexpr double GROUND = 6360.0; // km from the middle of the planet
constexpr double TOP = 6460.0;

inline Three operator+(const Three& a, const Three& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Three operator-(const Three& a, const Three& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Three operator*(const Three& a, const Three& b) {
    return {a[0] * b[0], a[1] * b[1], a[2] * b[2]};
}
inline Three operator*(const Three& a, double b) {
    return {a[0] * b, a[1] * b, a[2] * b};
}
inline double dot(const Three& a, const Three& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline double length(const Three& a) {
    return std::sqrt(dot(a, a));
}
inline Three normalized(const Three& a) {
    return a * (1.0 / length(a));
}
inline Three three(const ovMaths::Vector& v) {
    return {v.x, v.y, v.z};
}
template <typename Function>
Three each(const Three& a, const Function& function) {
    return {function(a[0]), function(a[1]), function(a[2])};
}

/// The distance to a sphere around the middle: the near hit, from inside the only one; -1 for none.
inline double hitSphere(const Three& origin, const Three& direction, double radius) {
    const double middle = -dot(origin, direction); // along the ray
    const double height = length(origin);
    const double closest = height * height - middle * middle;
    const double half = radius * radius - closest;
    const bool isInside = height <= radius;
    if (half < 0.0 || (!isInside && middle < 0.0))
        return -1.0;
    return isInside ? middle + std::sqrt(half) : middle - std::sqrt(half);
}

/// How far in km a ray passes the ground by, below 0 when it meets it; large for one that looks up.
inline double clearanceOf(const Three& origin, const Three& direction) {
    const double middle = -dot(origin, direction);
    if (middle <= 0.0)
        return 1e6;
    return std::sqrt(std::max(0.0, dot(origin, origin) - middle * middle)) - GROUND;
}

/// A table read between its texels, clamped at its edges.
inline Three sample(const FloatPicture& table, double u, double v) {
    const double x = std::clamp(u * table.width - 0.5, 0.0, table.width - 1.0);
    const double y = std::clamp(v * table.height - 0.5, 0.0, table.height - 1.0);
    const auto left = std::min(unsigned(x), table.width - 1);
    const auto top = std::min(unsigned(y), table.height - 1);
    Three result = {};
    for (unsigned int j = 0; j < 2; ++j)
        for (unsigned int i = 0; i < 2; ++i) {
            const double weight = (i ? x - left : 1.0 - (x - left)) * (j ? y - top : 1.0 - (y - top));
            const FloatPixel& texel =
                table.at(std::min(left + i, table.width - 1), std::min(top + j, table.height - 1));
            result = result + Three{texel[0], texel[1], texel[2]} * weight;
        }
    return result;
}
inline Three lookUp(const FloatPicture& table, double h, double sunCosine) {
    return sample(table, 0.5 + 0.5 * sunCosine, h / (TOP - GROUND));
}

/// The air of an effect's settings, per kilometre.
struct Air {
    ovVeldris::AtmosphereEffectInfo info;

    struct Densities {
        double rayleigh, mie, ozone;
    };
    Densities densitiesAt(double h) const {
        return {std::exp(-h / 8.0 * info.rayleigh.heightDensityFactor),
                std::exp(-h / 1.2 * info.mie.heightDensityFactor),
                std::max(0.0, 1.0 - std::abs(h - 25.0) / 15.0 * info.ozone.heightDensityFactor)};
    }
    static Three perKm(const ovMaths::Vector& coefficient) { return three(coefficient) * 1e-3; }

    /// By the coefficients of extinction.
    Three transmittance(double distance, double h) const {
        const Densities d = densitiesAt(h);
        const Three extinction = perKm(info.rayleigh.extinction) * d.rayleigh +
                                 perKm(info.mie.extinction) * d.mie + perKm(info.ozone.extinction) * d.ozone;
        return each(extinction, [&](double e) { return std::exp(-distance * e); });
    }

    static double rayleighPhase(double c) { return 3.0 / (16.0 * std::numbers::pi) * (1.0 + c * c); }
    double miePhase(double c) const {
        const double g = info.mieG;
        const double k = 1.55 * g - 0.55 * g * g * g;
        return (1.0 - k * k) / (4.0 * std::numbers::pi * std::pow(1.0 - k * c, 2.0));
    }

    Three sunTransmittance(const Three& origin, const Three& toSun) const {
        if (hitSphere(origin, toSun, GROUND) > 0.0)
            return {};
        const double end = hitSphere(origin, toSun, TOP);
        Three left = {1.0, 1.0, 1.0};
        double before = 0.0;
        for (unsigned int i = 0; i < info.sunLutSampleCount; ++i) {
            const double t = (i + 0.3) / info.sunLutSampleCount * end;
            left = left * transmittance(t - before, length(origin + toSun * t) - GROUND);
            before = t;
        }
        return left;
    }

    /// (s - s * left) / e: what a step gives of light s, for an extinction e and what is left after it.
    static Three integral(const Three& light, const Three& left, const Three& extinction) {
        Three result = {};
        for (unsigned int i = 0; i < 3; ++i)
            result[i] = extinction[i] > 0.0 ? light[i] * (1.0 - left[i]) / extinction[i] : 0.0;
        return result;
    }

    void scatterAlong(const Three& origin, const Three& direction, const Three& toSun,
                      const FloatPicture& sunTable, Three& light, Three& share) const {
        const double ground = hitSphere(origin, direction, GROUND);
        const double end = ground > 0.0 ? ground : hitSphere(origin, direction, TOP);
        const double c = dot(direction, toSun);
        Three left = {1.0, 1.0, 1.0};
        double before = 0.0;
        const unsigned int steps = info.multiScatteringLutMarchSampleCount;
        for (unsigned int i = 0; i < steps; ++i) {
            const double t = (i + 0.3) / steps * end;
            const Three place = origin + direction * t;
            const double h = length(place) - GROUND;
            const Densities d = densitiesAt(h);
            const Three rayleigh = perKm(info.rayleigh.scattering) * d.rayleigh;
            const Three mie = perKm(info.mie.scattering) * d.mie;
            const Three ozone = perKm(info.ozone.scattering) * d.ozone;
            const Three extinction = rayleigh + perKm(info.rayleigh.absorb) * d.rayleigh + mie +
                                     perKm(info.mie.absorb) * d.mie + ozone +
                                     perKm(info.ozone.absorb) * d.ozone;
            const Three step = transmittance(t - before, h);
            share = share + integral(rayleigh + mie + ozone, step, extinction) * left;
            const Three once = (rayleigh * rayleighPhase(c) + mie * miePhase(c)) *
                               lookUp(sunTable, h, dot(normalized(place), toSun));
            light = light + integral(once, step, extinction) * left;
            left = left * step;
            before = t;
        }
        if (ground <= 0.0)
            return;
        const Three place = origin + direction * ground;
        const double sunCosine = dot(normalized(place), toSun);
        if (sunCosine > 0.0)
            light =
                light + left * three(info.planetAlbedo) * lookUp(sunTable, length(place) - GROUND, sunCosine);
    }

    Three multiScattering(const Three& origin, const Three& toSun, const FloatPicture& sunTable) const {
        Three light = {};
        Three share = {};
        const unsigned int count = info.multiScatteringLutSphereSampleCount;
        for (unsigned int x = 0; x < count; ++x)
            for (unsigned int y = 0; y < count; ++y) {
                const double theta = std::numbers::pi * (x + 0.5) / count;
                const double phi = std::acos(1.0 - 2.0 * (y + 0.5) / count);
                const Three direction = {std::sin(phi) * std::sin(theta), std::cos(phi),
                                         std::sin(phi) * std::cos(theta)};
                scatterAlong(origin, direction, toSun, sunTable, light, share);
            }
        const double weight = count > 0 ? 1.0 / (double(count) * count) : 0.0;
        Three result = {};
        for (unsigned int i = 0; i < 3; ++i)
            result[i] = light[i] * weight / (1.0 - share[i] * weight);
        return result;
    }
};

/// A ray through the air from a camera at a height in metres.
struct Ray {
    Three origin, direction;
    double length, toScene;
    bool meetsGround;
};

/// @param viewDepth of the scene in metres; nothing: it does not end the ray
inline Ray startRay(const Air& air, double cameraHeight, const Three& direction,
                    std::optional<double> viewDepth) {
    Ray ray = {{0.0, std::max(1.0, cameraHeight) * 1e-3 + GROUND, 0.0}, direction, 0.0, 1e3, false};
    const double top = hitSphere(ray.origin, direction, TOP);
    const double ground = hitSphere(ray.origin, direction, GROUND);
    ray.meetsGround = ground >= 0.0;
    ray.length = top;
    const double factor = air.info.distanceFactor;
    if (viewDepth)
        ray.length = *viewDepth * 1e-3 * factor;
    else if (ray.meetsGround)
        ray.length = ground * factor;
    if (viewDepth || ray.meetsGround)
        ray.toScene = 1e3 / factor;
    ray.length = std::min(ray.length, top);
    return ray;
}

struct Marched {
    Three scattered = {};
    Three left = {1.0, 1.0, 1.0};
};

/// @param visibility of the sun at a distance in km along the ray
inline Marched march(
    const Air& air, const Ray& ray, const Three& toSun, const FloatPicture& sunTable,
    const FloatPicture& multiTable,
    const std::function<double(double)>& visibility = [](double) { return 1.0; }) {
    const double c = dot(ray.direction, toSun);
    Marched result;
    double before = 0.0;
    const unsigned int steps = air.info.raymarchSampleCount;
    for (unsigned int i = 0; i < steps; ++i) {
        const double t = (i + 0.3) / steps * ray.length;
        const Three place = ray.origin + ray.direction * t;
        const double h = length(place) - GROUND;
        const double sunCosine = dot(normalized(place), toSun);
        const Air::Densities d = air.densitiesAt(h);
        const Three sun = lookUp(sunTable, h, sunCosine);
        const Three around = lookUp(multiTable, h, sunCosine);
        const Three rayleigh = Air::perKm(air.info.rayleigh.scattering) * d.rayleigh;
        const Three mie = Air::perKm(air.info.mie.scattering) * d.mie;
        const Three scattering =
            rayleigh * (sun * Air::rayleighPhase(c) + around) + mie * (sun * air.miePhase(c) + around);
        const Three extinction = rayleigh + Air::perKm(air.info.rayleigh.absorb) * d.rayleigh + mie +
                                 Air::perKm(air.info.mie.absorb) * d.mie +
                                 Air::perKm(air.info.ozone.absorb) * d.ozone;
        const Three step = each(extinction, [&](double e) { return std::exp(-(t - before) * e); });
        result.scattered =
            result.scattered + Air::integral(scattering, step, extinction) * result.left * visibility(t);
        result.left = result.left * step;
        before = t;
    }
    return result;
}

/// The disc and its glow, before the factor of the sun's illuminance.
inline Three sunDisc(const Air& air, const Ray& ray, const Three& toSun, const FloatPicture& sunTable) {
    const double rim = std::cos(air.info.sunAngularRadius * std::numbers::pi / 180.0);
    const double outside = rim - dot(ray.direction, toSun);
    double shine =
        outside <= 0.0 ? 1.0 : std::exp(-outside * 50000.0) * 0.5 + 1.0 / (0.02 + outside * 300.0) * 0.01;
    const double t = std::clamp((shine - 0.002) / 0.998, 0.0, 1.0);
    shine = t * t * (3.0 - 2.0 * t);
    return lookUp(sunTable, length(ray.origin) - GROUND, dot(normalized(ray.origin), toSun)) * shine;
}

} // namespace atmosphereReference
