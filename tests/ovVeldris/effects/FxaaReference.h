// FXAA 3.11, quality version, in double precision, step by step as it is described.
#pragma once

#include <algorithm>
#include <cmath>
#include <support/FloatPicture.h>
#include <vector>

namespace fxaaReference {

/// A preset: the number that selects it and its step lengths in texels, as published.
struct Preset {
    const char* number;
    std::vector<double> steps;
};

inline const std::vector<Preset>& presets() {
    static const std::vector<Preset> PRESETS = {
        {"10", {1.5, 3, 12}},
        {"11", {1, 1.5, 3, 12}},
        {"12", {1, 1.5, 2, 4, 12}},
        {"13", {1, 1.5, 2, 2, 4, 12}},
        {"14", {1, 1.5, 2, 2, 2, 4, 12}},
        {"15", {1, 1.5, 2, 2, 2, 2, 4, 12}},
        {"20", {1.5, 2, 8}},
        {"21", {1, 1.5, 2, 8}},
        {"22", {1, 1.5, 2, 2, 8}},
        {"23", {1, 1.5, 2, 2, 2, 8}},
        {"24", {1, 1.5, 2, 2, 2, 3, 8}},
        {"25", {1, 1.5, 2, 2, 2, 2, 4, 8}},
        {"26", {1, 1.5, 2, 2, 2, 2, 2, 4, 8}},
        {"27", {1, 1.5, 2, 2, 2, 2, 2, 2, 4, 8}},
        {"28", {1, 1.5, 2, 2, 2, 2, 2, 2, 2, 4, 8}},
        {"29", {1, 1.5, 2, 2, 2, 2, 2, 2, 2, 2, 4, 8}},
        {"39", {1, 1, 1, 1, 1, 1.5, 2, 2, 2, 2, 4, 8}},
    };
    return PRESETS;
}

/// What decides where two numbers are too close to each other for single precision to tell: all ways are
/// taken, one after another.
class Ties {
public:
    /// @param width numbers nearer to each other than this are a tie; 0: there are none
    explicit Ties(double width)
        : _width(width) {}

    bool isBelow(double a, double b) {
        if (std::isnan(a) || std::isnan(b) || std::abs(a - b) >= _width)
            return a < b;
        if (_next == _taken.size())
            _taken.push_back(false);
        return _taken[_next++];
    }

    /// Turns to the next way. @return false when all were taken
    bool advance() {
        while (!_taken.empty() && _taken.back())
            _taken.pop_back();
        _next = 0;
        if (_taken.empty())
            return false;
        _taken.back() = true;
        return true;
    }

private:
    double _width;
    std::size_t _next = 0;
    std::vector<bool> _taken;
};

struct Settings {
    double minContrast = 0.25;
    double minLuminance = 0.0625;
    double strength = 0.75;
    std::vector<double> steps = presets()[2].steps;
    bool greenOnly = false;
};

class Fxaa {
public:
    Fxaa(const FloatPicture& picture, Settings settings)
        : _picture(picture)
        , _settings(std::move(settings)) {}

    /// Every colour that the pixel may become, one where nothing is a tie.
    std::vector<FloatPixel> possible(int x, int y, double tieWidth) const {
        Ties ties(tieWidth);
        std::vector<FloatPixel> result;
        do
            result.push_back(_filter(x, y, ties));
        while (ties.advance());
        return result;
    }

    /// The picture where no decision is a tie.
    FloatPicture exact() const {
        FloatPicture result(_picture.width, _picture.height);
        for (unsigned int y = 0; y < result.height; ++y)
            for (unsigned int x = 0; x < result.width; ++x)
                result.at(x, y) = possible(int(x), int(y), 0.0).front();
        return result;
    }

private:
    struct Place {
        double x, y; ///< texels; the middle of the first one is (0.5, 0.5)
    };

    FloatPixel _load(int x, int y) const {
        const bool isInside = x >= 0 && y >= 0 && x < int(_picture.width) && y < int(_picture.height);
        return isInside ? _picture.at(unsigned(x), unsigned(y)) : FloatPixel{};
    }

    FloatPixel _sample(const Place& place) const {
        const double left = std::floor(place.x - 0.5), top = std::floor(place.y - 0.5);
        const double right = place.x - 0.5 - left, below = place.y - 0.5 - top;
        const auto texel = [&](double x, double y) {
            return _load(std::clamp(int(x), 0, int(_picture.width) - 1),
                         std::clamp(int(y), 0, int(_picture.height) - 1));
        };
        FloatPixel result;
        for (std::size_t i = 0; i < 4; ++i)
            result[i] =
                float((1 - below) * ((1 - right) * texel(left, top)[i] + right * texel(left + 1, top)[i]) +
                      below * ((1 - right) * texel(left, top + 1)[i] + right * texel(left + 1, top + 1)[i]));
        return result;
    }

    double _luma(const FloatPixel& color) const {
        return _settings.greenOnly
                   ? double(color[1])
                   : 0.299 * double(color[0]) + 0.587 * double(color[1]) + 0.114 * double(color[2]);
    }

    FloatPixel _filter(int x, int y, Ties& ties) const {
        const auto at = [&](int dx, int dy) { return _luma(_load(x + dx, y + dy)); };
        const double M = at(0, 0), W = at(-1, 0), E = at(1, 0);
        double N = at(0, -1), S = at(0, 1);
        const double rangeMax = std::max({M, N, S, W, E});
        const double range = rangeMax - std::min({M, N, S, W, E});
        if (ties.isBelow(range, std::max(_settings.minLuminance, rangeMax * _settings.minContrast)))
            return _load(x, y);
        const double NW = at(-1, -1), NE = at(1, -1), SW = at(-1, 1), SE = at(1, 1);
        const double edgeHorz =
            std::abs(NW + SW - 2 * W) + 2 * std::abs(N + S - 2 * M) + std::abs(NE + SE - 2 * E);
        const double edgeVert =
            std::abs(NW + NE - 2 * N) + 2 * std::abs(W + E - 2 * M) + std::abs(SW + SE - 2 * S);
        const bool isHorizontal = !ties.isBelow(edgeHorz, edgeVert);

        const double mean = (2 * (N + S + W + E) + NW + SW + NE + SE) / 12;
        const double c = std::clamp(std::abs(mean - M) / range, 0.0, 1.0);
        const double subpix = std::pow((3 - 2 * c) * c * c, 2) * _settings.strength;

        if (!isHorizontal) {
            N = W;
            S = E;
        }
        // Equal colours give equal lumas in any precision.
        const bool isNorth = N == S || !ties.isBelow(std::abs(N - M), std::abs(S - M));
        const double gradientScaled = std::max(std::abs(N - M), std::abs(S - M)) * 0.25;
        const double average = 0.5 * ((isNorth ? N : S) + M);
        const double side = isNorth ? -1 : 1;
        const double offset = _edgeOffset({x + 0.5, y + 0.5}, isHorizontal, side, average, gradientScaled,
                                          ties.isBelow(M - average, 0.0), ties);
        const double shift = side * std::max(offset, subpix);
        return _sample({x + 0.5 + (isHorizontal ? 0 : shift), y + 0.5 + (isHorizontal ? shift : 0)});
    }

    double _edgeOffset(const Place& pixel, bool isHorizontal, double side, double average,
                       double gradientScaled, bool isMiddleBelow, Ties& ties) const {
        double distances[2]; // negative and positive end
        double differences[2];
        for (const int end : {0, 1}) {
            const double sign = end == 0 ? -1 : 1;
            distances[end] = 0.0;
            for (std::size_t i = 0; i < _settings.steps.size(); ++i) {
                distances[end] += _settings.steps[i];
                if (i > 0 && i + 1 == _settings.steps.size())
                    break;
                const double along = sign * distances[end];
                differences[end] =
                    _luma(_sample(isHorizontal ? Place{pixel.x + along, pixel.y + 0.5 * side}
                                               : Place{pixel.x + 0.5 * side, pixel.y + along})) -
                    average;
                if (!ties.isBelow(std::abs(differences[end]), gradientScaled))
                    break;
            }
        }
        const int nearer = distances[0] < distances[1] ? 0 : 1;
        if (ties.isBelow(differences[nearer], 0.0) == isMiddleBelow)
            return 0.0;
        return 0.5 - distances[nearer] / (distances[0] + distances[1]);
    }

    const FloatPicture& _picture;
    Settings _settings;
};

} // namespace fxaaReference
