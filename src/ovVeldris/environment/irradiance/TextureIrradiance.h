// The coefficients of environments that are textures.
#pragma once

#include <ovMemory/Enumeration.h>
#include <ovVeldris/environment/irradiance/IrradianceTransform.h>

namespace ovGraphics {
class Texture;
}

namespace ovVeldris {

/// Why the irradiance of a texture cannot be computed.
enum class IRRADIANCE_FAILURE : unsigned int {
    NONE = 0,
    UNLOADED = 1,   ///< it is unloaded: there are no texels
    COMPRESSED = 2, ///< its format is compressed
    UNREADABLE = 3  ///< the device did not hand out its texels
};

inline constexpr ovMemory::EnumEntry<IRRADIANCE_FAILURE> IRRADIANCE_FAILURE_ENTRIES[] = {
    {IRRADIANCE_FAILURE::NONE, "NONE"},
    {IRRADIANCE_FAILURE::UNLOADED, "UNLOADED"},
    {IRRADIANCE_FAILURE::COMPRESSED, "COMPRESSED"},
    {IRRADIANCE_FAILURE::UNREADABLE, "UNREADABLE"},
};
constexpr ovMemory::EnumTable<IRRADIANCE_FAILURE> enumTable(IRRADIANCE_FAILURE) {
    return {"IRRADIANCE_FAILURE", IRRADIANCE_FAILURE_ENTRIES};
}

/// What the device holds in mip 0 of a texture: settings changed since it was loaded are not in it. All zeros
/// for an unloaded one. Uploads what the texture's loading deferred.
OV_API IrradianceMapLayout irradianceLayoutOf(ovGraphics::Texture& texture);

/// The coefficients of a loaded cube or 2D texture, from mip 0, as IrradianceTransform computes them. Logs
/// nothing itself; belongs to the thread that drives rendering. One slice at a time is held in memory.
/// @param coefficients filled when the result is NONE, else left alone
OV_API IRRADIANCE_FAILURE computeIrradianceCoefficients(ovGraphics::Texture& texture,
                                                        IrradianceCoefficients& coefficients);

} // namespace ovVeldris
