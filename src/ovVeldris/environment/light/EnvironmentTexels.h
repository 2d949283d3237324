// Environments in memory, with the place of every texel on the sphere.
#pragma once

#include <array>
#include <cstddef>
#include <ovCommon/Api.h>
#include <ovImages/Image.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

inline constexpr unsigned int ENVIRONMENT_FACES = 6;

/// A direction, or a place inside the unit sphere.
using Direction = std::array<double, 3>;

inline Direction scaled(const Direction& direction, double factor) {
    return {direction[0] * factor, direction[1] * factor, direction[2] * factor};
}

/// Light from all around as linear floats, read where it lies. Rows run from the top: those of a panorama by
/// longitude and latitude (the top row is +y, the middle column +x, and +z lies a quarter to its right), or
/// the six faces of a cube below each other (+X, -X, +Y, -Y, +Z, -Z in Direct3D's layout).
class OV_API EnvironmentTexels {
public:
    /// @param image linear floats of three or four channels, aligned like floats, and six times as high as
    ///        wide when it is a cube; kept alive by the caller. Texels should be finite and not negative.
    EnvironmentTexels(const ovImages::ImageView& image, bool isCube);

    /// Whether the image is of the kind that the constructor asks for. Nothing else may be called when not.
    bool isValid() const { return _isValid; }

    bool isCube() const { return _isCube; }
    unsigned int getWidth() const { return _image.width; }
    /// Rows in all: six times the width for cubes.
    unsigned int getHeight() const { return _image.height; }

    /// Red, green and blue.
    const float* getLight(unsigned int column, unsigned int row) const {
        return reinterpret_cast<const float*>(_image.bytes.data()) +
               (std::size_t{row} * _image.width + column) * _image.channels;
    }

    /// Of the texel's middle, length 1.
    Direction getDirection(unsigned int column, unsigned int row) const;

    /// Exact; all together they are 4 pi. Steradians.
    double getSolidAngle(unsigned int column, unsigned int row) const;

    /// The angle that a texel is high; of a cube in the middle of a face, where it is largest. Radians.
    double getTexelHeight() const;

    /// The width of a texel of a row over its height, as angles.
    double getStretch(unsigned int row) const;

private:
    /// The number of a texel, or of its mirror image, in the quarter of a face that is kept.
    std::size_t _quarterTexel(unsigned int column, unsigned int row) const;
    void _placePanorama();
    void _placeCube();

    ovImages::ImageView _image;
    bool _isCube;
    bool _isValid;
    ovMemory::Buffer<std::array<double, 2>> _columns; ///< cosine and sine of the longitude
    ovMemory::Buffer<std::array<double, 2>> _rows;    ///< cosine and sine of the latitude
    ovMemory::Buffer<double> _places;                 ///< on a face of a cube, along either edge
    /// Of a row of a panorama; or of a quarter of a face, whose other quarters mirror it.
    ovMemory::Buffer<float> _solidAngles;
    /// What directions to places of the quarter are multiplied by to have length 1. Kept, because filtering
    /// asks for directions so often that their roots took a third of its time.
    ovMemory::Buffer<double> _unitScales;
};

/// The direction of a place of a cube's face, of any length.
/// @param face 0 to 5 @param a, b from -1 at the left and upper edge to 1 at the opposite ones
OV_API Direction directionOfFace(unsigned int face, double a, double b);

/// The direction of the middle of a texel of six faces below each other, length 1.
/// @param side texels of a face
OV_API Direction directionOfCubeTexel(unsigned int side, unsigned int column, unsigned int row);

} // namespace ovVeldris
