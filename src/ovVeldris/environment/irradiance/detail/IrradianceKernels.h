// The loops over the texels of a row, in versions for different processors.
#pragma once

#include <ovVeldris/environment/irradiance/detail/IrradianceComponents.h>
#include <ovVeldris/environment/irradiance/detail/IrradianceDirections.h>

namespace ovVeldris {

/// Four channels for each basis function.
using BasisValues = std::array<std::array<double, 4>, BASIS_FUNCTIONS>;

/// Where the texels of a row lie.
struct RowLayout {
    unsigned int width = 0;    ///< texels, 1 or more
    unsigned int channels = 0; ///< components read or written, 1 to 4
    std::size_t texelSize = 0; ///< bytes from one texel to the next, room for the channels
    double opaque = 1.0;       ///< what a fourth channel is written as
    std::size_t ahead = 0;     ///< bytes to the same texel of the next row to be read, 0 when there is none
};

/// Adds each texel times each basis function to the sums. What is added for channels that the row lacks means
/// nothing.
using ProjectRow = void (*)(const unsigned char* row, const RowLayout& layout, const ColumnTerms* terms,
                            const RowBasis& basis, BasisValues& sums);

/// Writes to each texel the sum of factors times basis functions, of which the fourth channel's must be 0.
/// Integers are cut off towards zero; those that do not fit are taken modulo 2^8 or 2^32, and what is not
/// finite becomes 0.
using EvaluateRow = void (*)(unsigned char* row, const RowLayout& layout, const ColumnTerms* terms,
                             const RowBasis& basis, const BasisValues& factors);

/// The loops for one component type and number of channels.
struct IrradianceKernels {
    ProjectRow project = nullptr;
    EvaluateRow evaluate = nullptr;
};

/// Writes a row of a cube's terms: k = 1 / sqrt(a^2 + b^2 + 1) and k a for each a.
/// @param useAvx2 only where canIrradianceUseAvx2()
void fillFaceRow(ovMemory::BufferView<const double> a, double b, ColumnTerms* terms, bool useAvx2);

/// Whether this processor has AVX2 and FMA, and the library loops that use them.
OV_API bool canIrradianceUseAvx2();

/// @param channels as RowLayout has them
/// @param useAvx2 only where canIrradianceUseAvx2(); sums are rounded differently then
OV_API IrradianceKernels irradianceKernelsOf(IRRADIANCE_COMPONENT component, unsigned int channels,
                                             bool useAvx2);

} // namespace ovVeldris
