#include <ovVeldris/environment/light/EnvironmentTexels.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovVeldris {

namespace {

constexpr double PI = std::numbers::pi;

/// The solid angle of the rectangle of a face from its middle to a place, signed like the product of a and b.
double solidAngleTo(double a, double b) {
    return std::atan2(a * b, std::sqrt(a * a + b * b + 1.0));
}

/// Of the middle of a texel, from -1 to 1.
double placeOnFace(unsigned int side, unsigned int texel) {
    return 2.0 * (texel + 0.5) / side - 1.0;
}

/// What a direction to a place of a face is multiplied by to have length 1.
double unitScale(double a, double b) {
    return 1.0 / std::sqrt(a * a + b * b + 1.0);
}

bool isReadable(const ovImages::ImageView& image, bool isCube) {
    return ovImages::isValid(image) && image.componentType == ovImages::COMPONENT_TYPE::FLOAT &&
           image.encoding == ovImages::COLOR_ENCODING::LINEAR && image.channels >= 3 &&
           (!isCube || image.height == ENVIRONMENT_FACES * image.width);
}

} // namespace

Direction directionOfFace(unsigned int face, double a, double b) {
    switch (face % ENVIRONMENT_FACES) {
    case 0:
        return {1.0, -b, -a};
    case 1:
        return {-1.0, -b, a};
    case 2:
        return {a, 1.0, b};
    case 3:
        return {a, -1.0, -b};
    case 4:
        return {a, -b, 1.0};
    default:
        return {-a, -b, -1.0};
    }
}

Direction directionOfCubeTexel(unsigned int side, unsigned int column, unsigned int row) {
    const double a = placeOnFace(side, column);
    const double b = placeOnFace(side, row % side);
    return scaled(directionOfFace(row / side, a, b), unitScale(a, b));
}

EnvironmentTexels::EnvironmentTexels(const ovImages::ImageView& image, bool isCube)
    : _image(image)
    , _isCube(isCube)
    , _isValid(isReadable(image, isCube)) {
    if (!_isValid)
        return;
    if (_isCube)
        _placeCube();
    else
        _placePanorama();
}

void EnvironmentTexels::_placePanorama() {
    for (unsigned int column = 0; column < _image.width; ++column) {
        const double longitude = 2.0 * PI * ((column + 0.5) / _image.width - 0.5);
        _columns.push_back({std::cos(longitude), std::sin(longitude)});
    }
    for (unsigned int row = 0; row < _image.height; ++row) {
        const double latitude = PI * (0.5 - (row + 0.5) / _image.height);
        _rows.push_back({std::cos(latitude), std::sin(latitude)});
        // The difference of the sines at the upper and lower edge, as a product that keeps its digits.
        const double band = 2.0 * std::cos(latitude) * std::sin(0.5 * PI / _image.height);
        _solidAngles.push_back(static_cast<float>(2.0 * PI / _image.width * band));
    }
}

void EnvironmentTexels::_placeCube() {
    const unsigned int side = _image.width;
    const unsigned int quarter = (side + 1) / 2;
    const auto edge = [side](unsigned int i) { return 2.0 * i / side - 1.0; };
    for (unsigned int i = 0; i < side; ++i)
        _places.push_back(placeOnFace(side, i));
    _solidAngles.resize(std::size_t{quarter} * quarter);
    _unitScales.resize(_solidAngles.size());
    for (unsigned int row = 0; row < quarter; ++row) {
        for (unsigned int column = 0; column < quarter; ++column) {
            const std::size_t texel = std::size_t{row} * quarter + column;
            _solidAngles[texel] = static_cast<float>(
                solidAngleTo(edge(column + 1), edge(row + 1)) - solidAngleTo(edge(column), edge(row + 1)) -
                solidAngleTo(edge(column + 1), edge(row)) + solidAngleTo(edge(column), edge(row)));
            _unitScales[texel] = unitScale(_places[column], _places[row]);
        }
    }
}

Direction EnvironmentTexels::getDirection(unsigned int column, unsigned int row) const {
    if (_isCube) {
        const unsigned int side = _image.width;
        return scaled(directionOfFace(row / side, _places[column], _places[row % side]),
                      _unitScales[_quarterTexel(column, row % side)]);
    }
    const auto [cosLongitude, sinLongitude] = _columns[column];
    const auto [cosLatitude, sinLatitude] = _rows[row];
    return {cosLongitude * cosLatitude, sinLatitude, sinLongitude * cosLatitude};
}

double EnvironmentTexels::getSolidAngle(unsigned int column, unsigned int row) const {
    if (!_isCube)
        return _solidAngles[row];
    return _solidAngles[_quarterTexel(column, row % _image.width)];
}

std::size_t EnvironmentTexels::_quarterTexel(unsigned int column, unsigned int row) const {
    const unsigned int side = _image.width;
    const std::size_t quarter = (side + 1) / 2;
    return std::min(row, side - 1 - row) * quarter + std::min(column, side - 1 - column);
}

double EnvironmentTexels::getTexelHeight() const {
    return _isCube ? 2.0 / _image.width : PI / _image.height;
}

double EnvironmentTexels::getStretch(unsigned int row) const {
    return _isCube ? 1.0 : 2.0 * _image.height / _image.width * _rows[row][0];
}

} // namespace ovVeldris
