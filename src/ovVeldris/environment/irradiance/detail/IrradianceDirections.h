// The directions of texels, taken apart so that a row's share is found once a row and a column's once a
// column.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// What a column contributes to the directions of a row. Mirrored columns (i and width - i) have the same
/// even and the opposite odd term. Both lie in [-1, 1].
struct ColumnTerms {
    double even;
    double odd;
};

/// The functions of a column's terms that span the nine basis functions in a row, in this order:
/// 1, even, even^2, odd, odd * even.
constexpr unsigned int ROW_FUNCTIONS = 5;

constexpr unsigned int BASIS_FUNCTIONS = 9;

/// basis[k][m]: how much of row function m is in basis function k.
using RowBasis = std::array<std::array<double, ROW_FUNCTIONS>, BASIS_FUNCTIONS>;

/// The basis functions, in the order of RowBasis, at one direction of length 1.
OV_API std::array<double, BASIS_FUNCTIONS> irradianceBasisOf(const std::array<double, 3>& direction);

/// Directions of the texels of a cube, or of a map by longitude and latitude, y up. A texel stands for its
/// top left corner: column i of w is at u = i / w, row j of h at v = j / h.
///
/// In both shapes each of x, y and z is p + q * even + r * odd with p, q and r of the row alone, and
/// odd^2 = 1 - g * even^2:
/// - a map at longitude phi = 2 pi u and latitude theta = pi v has the direction (sin theta sin phi, cos
///   theta, sin theta cos phi); even and odd are the cosine and sine of phi - pi, and g = 1;
/// - a cube's face at a = 2 u - 1, b = 2 v - 1 has (1, a, b) in some order and sign over
///   sqrt(a^2 + b^2 + 1) = 1 / k; even is k, odd is k a, and g = 1 + b^2.
/// Products of two of them are therefore sums of the five row functions.
///
/// Needs 16 bytes a column of half a map, or 4 bytes a texel of one face of a cube.
class OV_API IrradianceDirections {
public:
    /// @param width, height texels of the map or of a face, 1 or more
    /// @param useAvx2 only where canIrradianceUseAvx2(); a cube's terms are rounded differently then
    IrradianceDirections(bool isCube, unsigned int width, unsigned int height, bool useAvx2);

    /// The terms of the columns 0 to width / 2 in this row, for every slice.
    const ColumnTerms* getTerms(unsigned int row) const;

    /// The real spherical harmonics of bands 0 to 2 in the order 1; x, y, z; zx, xy, 2y^2 - x^2 - z^2, yz,
    /// z^2 - x^2, each with its factor of normalisation. @param slice face of a cube, 0 to 5; ignored for
    /// maps
    RowBasis getBasis(unsigned int slice, unsigned int row) const;

private:
    void _fillMap();
    void _fillCube(bool useAvx2);

    bool _isCube;
    unsigned int _width;
    unsigned int _height;
    unsigned int _columns;                     ///< that have terms
    ovMemory::UniquePtr<ColumnTerms[]> _terms; ///< no Buffer, which would fill megabytes with zeros first
};

} // namespace ovVeldris
