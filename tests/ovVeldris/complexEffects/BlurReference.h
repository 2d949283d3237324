// A blur by plain sums in double precision, written from the formulas.
#pragma once

#include <algorithm>
#include <cmath>
#include <support/FloatPicture.h>
#include <vector>

namespace blurReference {

struct Settings {
    unsigned int radius = 5;
    bool planes = false;
    bool preservesAlpha = false;
};

/// Weight of each distance from the centre: a row of Pascal's triangle, made by additions, without its ends.
inline std::vector<double> weightsOf(unsigned int radius) {
    std::vector<long double> row = {1.0L};
    for (unsigned int n = 1; n <= 2 * radius + 2; ++n) {
        row.push_back(1.0L);
        for (unsigned int k = n - 1; k > 0; --k)
            row[k] += row[k - 1];
    }
    long double sum = 0.0L;
    for (unsigned int k = 1; k <= 2 * radius + 1; ++k)
        sum += row[k];
    std::vector<double> weights;
    for (unsigned int distance = 0; distance <= radius; ++distance)
        weights.push_back(double(row[radius + 1 + distance] / sum));
    return weights;
}

using Pixel = std::array<double, 4>;

/// A row or a column, whose ends go on.
using Line = std::vector<Pixel>;

inline const Pixel& at(const Line& line, int place) {
    return line[std::size_t(std::clamp(place, 0, int(line.size()) - 1))];
}

inline void add(Pixel& sum, const Pixel& pixel, double weight) {
    for (std::size_t i = 0; i < 4; ++i)
        sum[i] += pixel[i] * weight;
}

inline Pixel convolve(const Line& line, int place, const std::vector<double>& weights) {
    Pixel sum = {};
    add(sum, at(line, place), weights[0]);
    for (int distance = 1; distance < int(weights.size()); ++distance) {
        add(sum, at(line, place - distance), weights[std::size_t(distance)]);
        add(sum, at(line, place + distance), weights[std::size_t(distance)]);
    }
    return sum;
}

/// What counts is what pairs of neighbours hold together: 1 and 2, 3 and 4 ... beside the centre of an even
/// radius; of an odd one 0 and 1, 2 and 3 ..., with half of the centre on either side.
inline Pixel convolvePlane(const Line& line, int place, const std::vector<double>& weights) {
    const bool isEven = weights.size() % 2 == 1;
    const Pixel centre = at(line, place);
    Pixel sum = {};
    double total = 0.0;
    if (isEven) {
        add(sum, centre, weights[0]);
        total = weights[0];
    }
    for (int first = isEven ? 1 : 0; first + 1 < int(weights.size()); first += 2) {
        const double a = weights[std::size_t(first)] * (first == 0 ? 0.5 : 1.0);
        const double b = weights[std::size_t(first) + 1];
        for (const int side : {-1, 1}) {
            Pixel pair = {};
            add(pair, at(line, place + side * first), a / (a + b));
            add(pair, at(line, place + side * (first + 1)), b / (a + b));
            if (std::abs(pair[3] - centre[3]) >= 1e-5)
                continue;
            add(sum, pair, a + b);
            total += a + b;
        }
    }
    if (total < 1e-5)
        return centre;
    for (double& component : sum)
        component /= total;
    return sum;
}

inline Line blurLine(const Line& line, const Settings& settings) {
    const std::vector<double> weights = weightsOf(settings.radius);
    Line result;
    for (int place = 0; place < int(line.size()); ++place)
        result.push_back(settings.planes ? convolvePlane(line, place, weights)
                                         : convolve(line, place, weights));
    return result;
}

/// Rows first, then columns.
inline FloatPicture blur(const FloatPicture& source, const Settings& settings) {
    std::vector<Line> rows;
    for (unsigned int y = 0; y < source.height; ++y) {
        Line row;
        for (unsigned int x = 0; x < source.width; ++x) {
            const FloatPixel& pixel = source.at(x, y);
            row.push_back({pixel[0], pixel[1], pixel[2], pixel[3]});
        }
        rows.push_back(blurLine(row, settings));
    }
    FloatPicture result(source.width, source.height);
    for (unsigned int x = 0; x < source.width; ++x) {
        Line column;
        for (const Line& row : rows)
            column.push_back(row[x]);
        column = blurLine(column, settings);
        for (unsigned int y = 0; y < source.height; ++y) {
            const Pixel& pixel = column[y];
            result.at(x, y) = {float(pixel[0]), float(pixel[1]), float(pixel[2]),
                               settings.preservesAlpha ? float(pixel[3]) : 1.0f};
        }
    }
    return result;
}

} // namespace blurReference
