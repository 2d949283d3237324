#include <ovVeldris/environment/irradiance/detail/IrradianceDirections.h>

#include <algorithm>
#include <cmath>
#include <ovVeldris/environment/irradiance/detail/IrradianceKernels.h>

namespace ovVeldris {

namespace {

// Pi and two pi as 32-bit floats hold them: what other tools of the family project with.
constexpr double PI = 3.1415927410125732;
constexpr double TWO_PI = 6.2831854820251465;

const double BAND_0 = 0.28209478329945054;                      // 1 / sqrt(4 pi)
const double BAND_1 = std::sqrt(0.23873240799450854);           // sqrt(3 / (4 pi))
const double BAND_2 = 0.5 * std::sqrt(4.77464815989017);        // sqrt(15 / pi) / 2
const double BAND_2_POLE = 0.25 * std::sqrt(1.591549386630057); // sqrt(5 / pi) / 4
const double BAND_2_SQUARES = 0.25 * std::sqrt(4.77464815989017);

using RowSum = std::array<double, ROW_FUNCTIONS>;

/// p + q * even + r * odd.
// In a row of a map or a face each coordinate is a sum of a constant, an even and an odd function of the
// distance from the middle. Their products, which the nine basis functions are made of, are sums of five. A
// column's share in the five is all that differs between columns.
struct Linear {
    double constant = 0.0;
    double even = 0.0;
    double odd = 0.0;
};

RowSum sumOf(const Linear& p, double factor) {
    return {factor * p.constant, factor * p.even, 0.0, factor * p.odd, 0.0};
}

RowSum productOf(const Linear& p, const Linear& q, double g) {
    return {p.constant * q.constant + p.odd * q.odd, p.constant * q.even + p.even * q.constant,
            p.even * q.even - g * p.odd * q.odd, p.constant * q.odd + p.odd * q.constant,
            p.even * q.odd + p.odd * q.even};
}

RowSum scaled(RowSum sum, double factor) {
    for (double& value : sum)
        value *= factor;
    return sum;
}

RowSum added(RowSum sum, const RowSum& other, double factor) {
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += factor * other[i];
    return sum;
}

/// A direction's coordinate on a face of a cube, before division by its length: one of the three is not 0.
struct FaceAxis {
    double one;
    double a;
    double b;
};

constexpr unsigned int CUBE_FACES = 6;

constexpr std::array<std::array<FaceAxis, 3>, CUBE_FACES> FACES = {{
    {{{1, 0, 0}, {0, 0, -1}, {0, -1, 0}}},
    {{{-1, 0, 0}, {0, 0, -1}, {0, 1, 0}}},
    {{{0, 1, 0}, {1, 0, 0}, {0, 0, 1}}},
    {{{0, 1, 0}, {-1, 0, 0}, {0, 0, -1}}},
    {{{0, 1, 0}, {0, 0, -1}, {1, 0, 0}}},
    {{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}},
}};

/// From -1 at the first texel's corner to 1 at the end of the last one.
double sideOf(unsigned int index, unsigned int count) {
    return 2.0 * (static_cast<double>(index) / count) - 1.0;
}

} // namespace

std::array<double, BASIS_FUNCTIONS> irradianceBasisOf(const std::array<double, 3>& direction) {
    const auto [x, y, z] = direction;
    return {BAND_0,
            BAND_1 * x,
            BAND_1 * y,
            BAND_1 * z,
            BAND_2 * z * x,
            BAND_2 * x * y,
            BAND_2_POLE * (2.0 * y * y - x * x - z * z),
            BAND_2 * y * z,
            BAND_2_SQUARES * (z * z - x * x)};
}

IrradianceDirections::IrradianceDirections(bool isCube, unsigned int width, unsigned int height, bool useAvx2)
    : _isCube(isCube)
    , _width(width)
    , _height(height)
    , _columns(width / 2 + 1) {
    if (_isCube)
        _fillCube(useAvx2);
    else
        _fillMap();
}

void IrradianceDirections::_fillMap() {
    _terms = std::make_unique_for_overwrite<ColumnTerms[]>(_columns);
    for (unsigned int column = 0; column < _columns; ++column) {
        const double fromMiddle = TWO_PI * (static_cast<double>(column) / _width - 0.5);
        _terms[column] = {std::cos(fromMiddle), std::sin(fromMiddle)};
    }
}

// Rows j and height - j have the same terms. Of a square, k of (i, j) is k of (j, i) too, but roots in order,
// several at once, are faster than half as many of them between copies from all over the table.
void IrradianceDirections::_fillCube(bool useAvx2) {
    const unsigned int rows = _height / 2 + 1;
    _terms = std::make_unique_for_overwrite<ColumnTerms[]>(std::size_t{rows} * _columns);
    ovMemory::Buffer<double> sides(_columns);
    for (unsigned int column = 0; column < _columns; ++column)
        sides[column] = sideOf(column, _width);
    for (unsigned int row = 0; row < rows; ++row)
        fillFaceRow(sides, sideOf(row, _height), &_terms[std::size_t{row} * _columns], useAvx2);
}

const ColumnTerms* IrradianceDirections::getTerms(unsigned int row) const {
    const std::size_t stored = _isCube ? std::min(row, _height - row) : 0;
    return &_terms[stored * _columns];
}

RowBasis IrradianceDirections::getBasis(unsigned int slice, unsigned int row) const {
    std::array<Linear, 3> axes;
    double g = 1.0;
    if (_isCube) {
        const double b = sideOf(row, _height);
        for (std::size_t i = 0; i < axes.size(); ++i) {
            const FaceAxis& axis = FACES[slice % CUBE_FACES][i];
            axes[i] = {0.0, axis.one + axis.b * b, axis.a};
        }
        g += b * b;
    } else {
        // The longitude is the angle from the middle plus half a turn.
        static const double COS_HALF_TURN = std::cos(0.5 * TWO_PI);
        static const double SIN_HALF_TURN = std::sin(0.5 * TWO_PI);
        const double theta = PI * (static_cast<double>(row) / _height);
        const double sinTheta = std::sin(theta);
        axes[0] = {0.0, sinTheta * SIN_HALF_TURN, sinTheta * COS_HALF_TURN};
        axes[1] = {std::cos(theta), 0.0, 0.0};
        axes[2] = {0.0, sinTheta * COS_HALF_TURN, -sinTheta * SIN_HALF_TURN};
    }
    const auto& [x, y, z] = axes;
    const RowSum xx = productOf(x, x, g);
    const RowSum zz = productOf(z, z, g);
    const RowSum aroundPole = added(added(scaled(productOf(y, y, g), 2.0), xx, -1.0), zz, -1.0);
    return {sumOf({1.0, 0.0, 0.0}, BAND_0),
            sumOf(x, BAND_1),
            sumOf(y, BAND_1),
            sumOf(z, BAND_1),
            scaled(productOf(z, x, g), BAND_2),
            scaled(productOf(x, y, g), BAND_2),
            scaled(aroundPole, BAND_2_POLE),
            scaled(productOf(y, z, g), BAND_2),
            scaled(added(zz, xx, -1.0), BAND_2_SQUARES)};
}

} // namespace ovVeldris
