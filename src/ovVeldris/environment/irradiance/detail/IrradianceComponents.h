// How the irradiance computation reads and writes the texels of each format.
#pragma once

#include <cstddef>
#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>

namespace ovVeldris {

enum class IRRADIANCE_COMPONENT : unsigned int { FLOAT32 = 0, UINT32 = 1, SINT32 = 2, UINT8 = 3, SINT8 = 4 };

/// A format's texels as the computation sees them.
struct IrradianceComponents {
    IRRADIANCE_COMPONENT component = IRRADIANCE_COMPONENT::UINT8;
    bool isListed = false; ///< false: the texels are read as bytes
    unsigned int channels =
        0; ///< components read and written, 0 to 4: the format's, as far as a texel has room
    std::size_t texelSize = 0; ///< bytes from one texel to the next
    double scale = 1.0;        ///< the number that stands for 1
};

/// The formats 1 to 8 and 27 to 32 are read by their components' type (a normalised one as its integer), all
/// others as bytes. A format that packs several texels in a block, or UNKNOWN, has no channels.
OV_API IrradianceComponents irradianceComponentsOf(ovGraphics::FORMAT format);

} // namespace ovVeldris
