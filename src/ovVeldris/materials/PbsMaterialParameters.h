// Everything that a PBS material is made of: what was set, and what loading it found.
#pragma once

#include <ovVeldris/materials/PbsProperties.h>

namespace ovVeldris {

/// Where the pixel stage's constant buffer holds the properties, in slots; known when the shader is prepared.
struct PbsShaderLayout {
    struct Constants {
        unsigned int value = 0;       ///< the property's own
        unsigned int textureSize = 0; ///< of a map of the surroundings or of shadows
    };
    std::array<Constants, PBS_PROPERTY_COUNT> constants; ///< by row of the table
    unsigned int shadowViewMatrixConstant = 0;
    unsigned int shadowProjectionMatrixConstant = 0;
};

/// The units of the textures, known when the material is loaded.
struct PbsLoadedTextures {
    /// Textures that the surface's properties can bind together, a unit each.
    static constexpr unsigned int PACKED_TEXTURE_COUNT = 8;
    /// Unit of a texture that is not bound.
    static constexpr int NOT_BOUND = -1;

    PbsLoadedTextures() { units.fill(NOT_BOUND); }

    /// The unit of a texture among those that are packed, or their number when it is not.
    unsigned int findPackedUnit(const ovGraphics::Texture* texture) const {
        unsigned int unit = 0;
        while (unit < packedTextures.size() && packedTextures[unit].get() != texture)
            ++unit;
        return unit;
    }

    /// The distinct textures of the material's surface by unit, without gaps.
    std::array<PbsTexture, PACKED_TEXTURE_COUNT> packedTextures;
    std::array<int, PBS_PROPERTY_COUNT> units; ///< of the properties' textures, by row of the table
};

/// The whole of it. A loaded material keeps one as it was loaded, and one as it is set now.
struct PbsMaterialParameters : PbsSettings, PbsShaderLayout, PbsLoadedTextures {};

} // namespace ovVeldris
