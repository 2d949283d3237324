// Depth of field by plain loops in double precision, written from the formulas.
#pragma once

#include <ovVeldris/complexEffects/BlurReference.h>

namespace dofReference {

struct Settings {
    double cameraNear = 0.0;
    double cameraFar = 1.0;
    double nearPlane = 10.0;
    double focus = 50.0;
    double thickness = 0.0;
    double farPlane = 100.0;
    unsigned int strength = 3;
};

/// Distances of the pixels of a picture, and what the picture becomes.
class Dof {
public:
    /// @param linearDepth view z over the far plane, a pixel each, in the first component
    Dof(const FloatPicture& source, const FloatPicture& linearDepth, const Settings& settings)
        : _source(source)
        , _depth(linearDepth)
        , _s(settings)
        , _focusStart(settings.focus - settings.thickness / 2.0)
        , _focusEnd(settings.focus + settings.thickness / 2.0) {}

    double zAt(int x, int y) const {
        const auto column = unsigned(std::clamp(x, 0, int(_depth.width) - 1));
        const auto row = unsigned(std::clamp(y, 0, int(_depth.height) - 1));
        return _s.cameraNear + _depth.at(column, row)[0] * (_s.cameraFar - _s.cameraNear);
    }

    /// Three small pictures: near field, far field, fade.
    std::array<FloatPicture, 3> shrink() const {
        const unsigned int width = std::max(_source.width / 4, 1u);
        const unsigned int height = std::max(_source.height / 4, 1u);
        std::array<FloatPicture, 3> planes = {FloatPicture(width, height), FloatPicture(width, height),
                                              FloatPicture(width, height)};
        for (unsigned int y = 0; y < height; ++y)
            for (unsigned int x = 0; x < width; ++x) {
                const double placeX = (x + 0.5) * _source.width / width;
                const double placeY = (y + 0.5) * _source.height / height;
                const double z = zAt(int(std::floor(placeX)), int(std::floor(placeY)));
                const bool isFocused = _focusStart < z && z < _focusEnd;
                planes[0].at(x, y) = isFocused ? FloatPixel{} : _field(placeX, placeY, true);
                planes[1].at(x, y) = _field(placeX, placeY, false);
                const double behind = saturate((z - _focusEnd) / (_s.farPlane - _focusEnd));
                const double before = 1.0 - saturate((z - _s.nearPlane) / (_focusStart - _s.nearPlane));
                planes[2].at(x, y) = {isFocused ? 0.0f : float(before), isFocused ? 0.0f : float(behind),
                                      z < _s.farPlane ? float(behind) : 0.0f, 1.0f};
            }
        return planes;
    }

    FloatPicture blend(const std::array<FloatPicture, 3>& blurred) const {
        FloatPicture result(_source.width, _source.height);
        for (unsigned int y = 0; y < result.height; ++y)
            for (unsigned int x = 0; x < result.width; ++x)
                result.at(x, y) = _blendPixel(x, y, blurred);
        return result;
    }

    FloatPicture draw() const {
        std::array<FloatPicture, 3> planes = shrink();
        for (FloatPicture& plane : planes)
            plane = blurReference::blur(plane, {.radius = _s.strength, .preservesAlpha = true});
        return blend(planes);
    }

private:
    static double saturate(double x) { return std::clamp(x, 0.0, 1.0); }

    /// The fraction of the place weighs the texels that lie half a texel before it and after.
    FloatPixel _field(double placeX, double placeY, bool wantsClose) const {
        const double fractionX = placeX - std::floor(placeX);
        const double fractionY = placeY - std::floor(placeY);
        const int baseX = int(std::floor(placeX - 0.5));
        const int baseY = int(std::floor(placeY - 0.5));
        std::array<double, 4> sum = {};
        for (const int dy : {0, 1})
            for (const int dx : {0, 1}) {
                const double weight =
                    (dx == 1 ? fractionX : 1.0 - fractionX) * (dy == 1 ? fractionY : 1.0 - fractionY);
                if ((zAt(baseX + dx, baseY + dy) < _s.farPlane) != wantsClose)
                    continue;
                const FloatPixel& pixel =
                    _source.at(unsigned(std::clamp(baseX + dx, 0, int(_source.width) - 1)),
                               unsigned(std::clamp(baseY + dy, 0, int(_source.height) - 1)));
                for (std::size_t i = 0; i < 3; ++i)
                    sum[i] += weight * pixel[i];
                sum[3] += weight;
            }
        return {float(sum[0]), float(sum[1]), float(sum[2]), float(sum[3])};
    }

    /// What bilinear filtering reads in a small picture, at the place of a pixel of the whole one.
    std::array<double, 4> _read(const FloatPicture& plane, unsigned int x, unsigned int y) const {
        const double placeX = (x + 0.5) / _source.width * plane.width - 0.5;
        const double placeY = (y + 0.5) / _source.height * plane.height - 0.5;
        const int baseX = int(std::floor(placeX));
        const int baseY = int(std::floor(placeY));
        std::array<double, 4> sum = {};
        for (const int dy : {0, 1})
            for (const int dx : {0, 1}) {
                const double weight =
                    std::abs(1.0 - dx - (placeX - baseX)) * std::abs(1.0 - dy - (placeY - baseY));
                const FloatPixel& pixel =
                    plane.at(unsigned(std::clamp(baseX + dx, 0, int(plane.width) - 1)),
                             unsigned(std::clamp(baseY + dy, 0, int(plane.height) - 1)));
                for (std::size_t i = 0; i < 4; ++i)
                    sum[i] += weight * pixel[i];
            }
        return sum;
    }

    FloatPixel _blendPixel(unsigned int x, unsigned int y, const std::array<FloatPicture, 3>& blurred) const {
        const auto n = _read(blurred[0], x, y);
        const auto f = _read(blurred[1], x, y);
        const auto fade = _read(blurred[2], x, y);
        const FloatPixel& source = _source.at(x, y);
        const double sharp[] = {source[0], source[1], source[2], 1.0};
        const double z = zAt(int(x), int(y));
        FloatPixel result;
        for (std::size_t i = 0; i < 4; ++i) {
            double value = 0.0;
            if (z <= _s.nearPlane)
                value = fade[0] * (n[i] + f[i]) + (1.0 - fade[0]) * n[i];
            else if (z >= _s.farPlane)
                value = fade[2] * (n[i] + f[i]) + (1.0 - fade[2]) * f[i] / f[3];
            else if (_focusStart < z && z < _focusEnd)
                value = sharp[i];
            else {
                const double amount = z < _s.focus ? fade[0] : fade[1];
                value = sharp[i] + (n[i] + f[i] - sharp[i]) * amount;
            }
            result[i] = float(value);
        }
        return result;
    }

    const FloatPicture& _source;
    const FloatPicture& _depth;
    Settings _s;
    double _focusStart;
    double _focusEnd;
};

} // namespace dofReference
