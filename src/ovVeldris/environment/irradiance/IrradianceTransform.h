// From environment maps to nine coefficients, and from those to irradiance maps.
#pragma once

#include <array>
#include <cstddef>
#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// How the texels of an environment map lie in memory: rows from the top, the faces of a cube in the order
/// +X, -X, +Y, -Y, +Z, -Z with Direct3D's face layout.
struct IrradianceMapLayout {
    bool isCube = false; ///< otherwise a map by longitude and latitude
    ovGraphics::FORMAT format = ovGraphics::FORMAT::UNKNOWN;
    unsigned int width = 0;  ///< texels of the map or of a face
    unsigned int height = 0; ///< texels
    unsigned int slices = 1; ///< 6 for a cube, else usually 1
};

/// The projection of an environment's light onto the real spherical harmonics of bands 0 to 2, y up, for each
/// of three channels, in units in which a UNORM map's largest value is 1. The light, not yet the irradiance:
/// that is weakened by IRRADIANCE_BAND_FACTORS.
struct IrradianceCoefficients {
    /// values[k][channel] in the order of k: 1; x, y, z; zx, xy, 2y^2 - x^2 - z^2, yz, z^2 - x^2. The basis
    /// functions are orthonormal.
    std::array<std::array<double, 3>, 9> values = {};
};

/// What the cosine lobe of a diffuse surface, divided by pi, leaves of each coefficient: 1, 2/3 and 1/4 by
/// band (R. Ramamoorthi, P. Hanrahan: An Efficient Representation for Irradiance Environment Maps, 2001).
inline constexpr std::array<double, 9> IRRADIANCE_BAND_FACTORS = {1.0,  2.0 / 3.0, 2.0 / 3.0, 2.0 / 3.0, 0.25,
                                                                  0.25, 0.25,      0.25,      0.25};

/// Which instructions of the processor may be used. The results differ in the rounding of sums.
enum class IRRADIANCE_INSTRUCTIONS : unsigned int {
    BEST = 0, ///< AVX2 and FMA where the processor has them
    PLAIN = 1 ///< those that every processor of the architecture has
};

inline constexpr ovMemory::EnumEntry<IRRADIANCE_INSTRUCTIONS> IRRADIANCE_INSTRUCTIONS_ENTRIES[] = {
    {IRRADIANCE_INSTRUCTIONS::BEST, "BEST"},
    {IRRADIANCE_INSTRUCTIONS::PLAIN, "PLAIN"},
};
constexpr ovMemory::EnumTable<IRRADIANCE_INSTRUCTIONS> enumTable(IRRADIANCE_INSTRUCTIONS) {
    return {"IRRADIANCE_INSTRUCTIONS", IRRADIANCE_INSTRUCTIONS_ENTRIES};
}

/// Computes with the texels of one layout, on the CPU, on the thread that calls, in 64-bit floats.
///
/// Every texel weighs the same, whatever solid angle it covers, and stands for the direction of its top left
/// corner. Neither is exact: a constant environment of 1 gives 0.84 at the equator of a map's result and 1.31
/// at its poles, and a cube of 256 texels a side gives 1 within 0.43 %. A map's longitude is 0 at +z and
/// rises towards +x, and its latitude is 0 at +y. The other maps of the library have other axes: their x is
/// -z here, and their z is -x. The coefficients show this. Drawn maps do not, because they are written as
/// they are read.
///
/// Texels are read as memory holds them, without decoding sRGB: 32-bit floats and integers and 8-bit integers
/// where the format is one of R32G32B32(A32) or R8G8B8A8, and bytes for any other format, whatever it means.
/// A value of 1 is 255 in a UNORM format of 8 bits (bytes of any other 8-bit UNORM format too) and 1 in all
/// others, signed normalised ones included. Channels 0 to 2 of a texel are used, as many as there are.
class OV_API IrradianceTransform {
public:
    explicit IrradianceTransform(const IrradianceMapLayout& layout,
                                 IRRADIANCE_INSTRUCTIONS instructions = IRRADIANCE_INSTRUCTIONS::BEST);
    IrradianceTransform(const IrradianceTransform&) = delete;
    IrradianceTransform& operator=(const IrradianceTransform&) = delete;
    ~IrradianceTransform();

    const IrradianceMapLayout& getLayout() const { return _layout; }

    /// Why no texels of this layout can be worked on: a size of 0, a cube that has not 6 slices, or a format
    /// that is UNKNOWN, compressed or has several texels in a block. Empty when they can.
    ovMemory::StringView getProblem() const { return _problem; }

    /// Whether the format's own components are read; false: the texels are read as bytes.
    bool isFormatListed() const;

    /// Bytes of a row without gaps.
    std::size_t getTightPitch() const;

    /// Adds one slice's share to the coefficients. Start from zeros and add every slice once to get the
    /// coefficients of the map. A value that is not finite spreads to all coefficients of its channel.
    /// @param rowPitch bytes from one row to the next; 0 for rows without gaps
    /// @return false, and nothing added, when getProblem() tells why, when there is no such slice, or when
    ///         the bytes are too few
    bool project(unsigned int slice, ovMemory::BufferView<const unsigned char> bytes, std::size_t rowPitch,
                 IrradianceCoefficients& coefficients);

    /// Writes the irradiance over pi of one slice's directions, which is what a diffuse surface multiplies
    /// with its albedo, times the number that stands for 1. A fourth channel gets that number itself.
    ///
    /// Floats are rounded, integers are cut off towards zero and not clamped: one that does not fit is taken
    /// modulo 2^8 or 2^32 (256 becomes 0, and -1 becomes 255 in an unsigned byte), and one that is not finite
    /// becomes 0. Bytes between rows, and parts of texels that are not components, stay as they are.
    /// @return false, and nothing written, in the cases of project()
    bool evaluate(const IrradianceCoefficients& coefficients, unsigned int slice,
                  ovMemory::BufferView<unsigned char> bytes, std::size_t rowPitch);

private:
    struct Detail;

    bool _isSlice(unsigned int slice, std::size_t size, std::size_t& rowPitch) const;

    IrradianceMapLayout _layout;
    ovMemory::StringView _problem;
    ovMemory::UniquePtr<Detail> _detail;
};

} // namespace ovVeldris
