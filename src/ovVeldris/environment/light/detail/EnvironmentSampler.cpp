#include <ovVeldris/environment/light/detail/EnvironmentSampler.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovVeldris {

namespace {

constexpr float PI_F = std::numbers::pi_v<float>;

/// Where a direction meets the cube: the inverse of directionOfFace().
struct FacePlace {
    unsigned int face;
    double a;
    double b;
};

FacePlace facePlaceOf(const Direction& direction) {
    const auto [x, y, z] = direction;
    const double ax = std::abs(x);
    const double ay = std::abs(y);
    const double az = std::abs(z);
    if (ax >= ay && ax >= az)
        return x > 0.0 ? FacePlace{0, -z / ax, -y / ax} : FacePlace{1, z / ax, -y / ax};
    if (ay >= az)
        return y > 0.0 ? FacePlace{2, x / ay, z / ay} : FacePlace{3, x / ay, -z / ay};
    return z > 0.0 ? FacePlace{4, x / az, -y / az} : FacePlace{5, -x / az, -y / az};
}

EnvironmentSampler::Color mixed(const std::array<const float*, 4>& texels, float right, float down) {
    EnvironmentSampler::Color color;
    for (std::size_t i = 0; i < color.size(); ++i) {
        const float upper = texels[0][i] + (texels[1][i] - texels[0][i]) * right;
        const float lower = texels[2][i] + (texels[3][i] - texels[2][i]) * right;
        color[i] = upper + (lower - upper) * down;
    }
    return color;
}

} // namespace

EnvironmentSampler::Place EnvironmentSampler::_placeOf(float column, float row) {
    // The middles of texels lie at halves.
    const float left = std::floor(column - 0.5f);
    const float upper = std::floor(row - 0.5f);
    return {static_cast<int>(left), static_cast<int>(upper), column - 0.5f - left, row - 0.5f - upper};
}

EnvironmentSampler::Color EnvironmentSampler::sample(const Direction& direction) const {
    return _environment.isCube() ? _sampleCube(direction) : _samplePanorama(direction);
}

const float* EnvironmentSampler::_getPanoramaTexel(int column, int row) const {
    const int width = static_cast<int>(_environment.getWidth());
    const int height = static_cast<int>(_environment.getHeight());
    if (row < 0 || row >= height) { // beyond a pole lies the same row, half a turn away
        row = std::clamp(row, 0, height - 1);
        column += width / 2;
    }
    column = (column % width + width) % width;
    return _environment.getLight(static_cast<unsigned int>(column), static_cast<unsigned int>(row));
}

EnvironmentSampler::Color EnvironmentSampler::_samplePanorama(const Direction& direction) const {
    const auto x = static_cast<float>(direction[0]);
    const auto y = static_cast<float>(direction[1]);
    const auto z = static_cast<float>(direction[2]);
    const float longitude = std::atan2(z, x);
    const float latitude = std::atan2(y, std::sqrt(x * x + z * z));
    const Place place =
        _placeOf((0.5f + longitude / (2.0f * PI_F)) * static_cast<float>(_environment.getWidth()),
                 (0.5f - latitude / PI_F) * static_cast<float>(_environment.getHeight()));
    return mixed({_getPanoramaTexel(place.column, place.row), _getPanoramaTexel(place.column + 1, place.row),
                  _getPanoramaTexel(place.column, place.row + 1),
                  _getPanoramaTexel(place.column + 1, place.row + 1)},
                 place.right, place.down);
}

const float* EnvironmentSampler::_getCubeTexel(unsigned int face, int column, int row) const {
    const int side = static_cast<int>(_environment.getWidth());
    if (column < 0 || row < 0 || column >= side || row >= side) {
        // Beyond an edge the plane of the face is seen over the neighbour, whose nearest texel is taken.
        const FacePlace place = facePlaceOf(
            directionOfFace(face, 2.0 * (column + 0.5) / side - 1.0, 2.0 * (row + 0.5) / side - 1.0));
        face = place.face;
        column = std::clamp(static_cast<int>((place.a + 1.0) * 0.5 * side), 0, side - 1);
        row = std::clamp(static_cast<int>((place.b + 1.0) * 0.5 * side), 0, side - 1);
    }
    return _environment.getLight(static_cast<unsigned int>(column),
                                 face * _environment.getWidth() + static_cast<unsigned int>(row));
}

EnvironmentSampler::Color EnvironmentSampler::_sampleCube(const Direction& direction) const {
    const FacePlace on = facePlaceOf(direction);
    const double half = 0.5 * _environment.getWidth();
    const Place place =
        _placeOf(static_cast<float>((on.a + 1.0) * half), static_cast<float>((on.b + 1.0) * half));
    return mixed({_getCubeTexel(on.face, place.column, place.row),
                  _getCubeTexel(on.face, place.column + 1, place.row),
                  _getCubeTexel(on.face, place.column, place.row + 1),
                  _getCubeTexel(on.face, place.column + 1, place.row + 1)},
                 place.right, place.down);
}

} // namespace ovVeldris
