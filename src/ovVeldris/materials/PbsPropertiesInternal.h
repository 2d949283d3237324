// The properties of PBS materials as tables: what they are called in trees and defines, and where they are
// kept.
#pragma once

#include <algorithm>
#include <array>
#include <ovVeldris/materials/PbsMaterialParameters.h>

namespace ovVeldris {

/// A texture that a material may have. It holds either a vector, in three channels, or a number, in one.
struct PbsTextureProperty {
    ovMemory::StringView memberName; ///< in trees; empty: not kept in them
    ovMemory::StringView defineName; ///< "ALBEDO" of ALBEDO_TEXTURE
    PbsTexture PbsMaterialParameters::*texture;
    THREE_CHANNEL_PACK PbsMaterialParameters::*vectorChannels = nullptr;
    ONE_CHANNEL_PACK PbsMaterialParameters::*numberChannel = nullptr;
    int PbsMaterialParameters::*slot = nullptr; ///< null: a unit of its own instead of a packed one

    /// Whether a material has the texture.
    bool isIn(const PbsMaterialParameters& parameters) const { return (parameters.*texture).isNamed(); }
    /// The channels as swizzles and files have them, in lower case.
    ovMemory::StringView getChannelsText(const PbsMaterialParameters& parameters) const {
        return vectorChannels ? ThreeChannelPackUtils::enumToStringLower(parameters.*vectorChannels)
                              : OneChannelPackUtils::enumToStringLower(parameters.*numberChannel);
    }
};

inline constexpr PbsTextureProperty PBS_ALBEDO_TEXTURE = {
    .memberName = "albedoTexture",
    .defineName = "ALBEDO",
    .texture = &PbsMaterialParameters::albedoTexture,
    .vectorChannels = &PbsMaterialParameters::albedoTextureChannels,
    .slot = &PbsMaterialParameters::albedoTextureSlot,
};
inline constexpr PbsTextureProperty PBS_SPECULAR_TEXTURE = {
    .memberName = "specularTexture",
    .defineName = "SPECULAR",
    .texture = &PbsMaterialParameters::specularTexture,
    .vectorChannels = &PbsMaterialParameters::specularTextureChannels,
    .slot = &PbsMaterialParameters::specularTextureSlot,
};
inline constexpr PbsTextureProperty PBS_EMISSIVE_TEXTURE = {
    .memberName = "emissiveTexture",
    .defineName = "EMISSIVE",
    .texture = &PbsMaterialParameters::emissiveTexture,
    .vectorChannels = &PbsMaterialParameters::emissiveTextureChannels,
    .slot = &PbsMaterialParameters::emissiveTextureSlot,
};
inline constexpr PbsTextureProperty PBS_METALNESS_TEXTURE = {
    .memberName = "metalnessTexture",
    .defineName = "METALNESS",
    .texture = &PbsMaterialParameters::metalnessTexture,
    .numberChannel = &PbsMaterialParameters::metalnessTextureChannel,
    .slot = &PbsMaterialParameters::metalnessTextureSlot,
};
inline constexpr PbsTextureProperty PBS_ROUGHNESS_GLOSSINESS_TEXTURE = {
    .memberName = "roughnessGlossinessTexture",
    .defineName = "ROUGHNESS_GLOSSINESS",
    .texture = &PbsMaterialParameters::roughnessGlossinessTexture,
    .numberChannel = &PbsMaterialParameters::roughnessGlossinessTextureChannel,
    .slot = &PbsMaterialParameters::roughnessGlossinessTextureSlot,
};
inline constexpr PbsTextureProperty PBS_ALPHA_TEXTURE = {
    .memberName = "alphaTexture",
    .defineName = "ALPHA",
    .texture = &PbsMaterialParameters::alphaTexture,
    .numberChannel = &PbsMaterialParameters::alphaTextureChannel,
    .slot = &PbsMaterialParameters::alphaTextureSlot,
};
inline constexpr PbsTextureProperty PBS_OCCLUSION_TEXTURE = {
    .memberName = "",
    .defineName = "OCCLUSION",
    .texture = &PbsMaterialParameters::occlusionTexture,
    .numberChannel = &PbsMaterialParameters::occlusionTextureChannel,
    .slot = &PbsMaterialParameters::occlusionTextureSlot,
};
inline constexpr PbsTextureProperty PBS_NORMAL_MAP_TEXTURE = {
    .memberName = "normalMap",
    .defineName = "NORMAL_MAP",
    .texture = &PbsMaterialParameters::normalMapTexture,
    .vectorChannels = &PbsMaterialParameters::normalMapTextureChannels,
    .slot = &PbsMaterialParameters::normalMapTextureSlot,
};
inline constexpr PbsTextureProperty PBS_ENVIRONMENT_TEXTURE = {
    .memberName = "environmentTexture",
    .defineName = "ENV",
    .texture = &PbsMaterialParameters::environmentTexture,
    .vectorChannels = &PbsMaterialParameters::environmentTextureChannels,
};
inline constexpr PbsTextureProperty PBS_IRRADIANCE_TEXTURE = {
    .memberName = "irradianceTexture",
    .defineName = "IRRADIANCE",
    .texture = &PbsMaterialParameters::irradianceTexture,
    .vectorChannels = &PbsMaterialParameters::irradianceTextureChannels,
};

/// The textures that are read at the mesh's texture coordinates, in the order of their defines.
inline constexpr std::array PBS_SURFACE_TEXTURES = {
    &PBS_ALBEDO_TEXTURE,
    &PBS_SPECULAR_TEXTURE,
    &PBS_EMISSIVE_TEXTURE,
    &PBS_METALNESS_TEXTURE,
    &PBS_ROUGHNESS_GLOSSINESS_TEXTURE,
    &PBS_ALPHA_TEXTURE,
    &PBS_NORMAL_MAP_TEXTURE,
    &PBS_OCCLUSION_TEXTURE,
};

/// The same in the order in which they take units.
inline constexpr std::array PBS_PACKING_ORDER = {
    &PBS_ALBEDO_TEXTURE,    &PBS_SPECULAR_TEXTURE, &PBS_EMISSIVE_TEXTURE,   &PBS_ROUGHNESS_GLOSSINESS_TEXTURE,
    &PBS_METALNESS_TEXTURE, &PBS_ALPHA_TEXTURE,    &PBS_NORMAL_MAP_TEXTURE, &PBS_OCCLUSION_TEXTURE,
};

/// The unit of a texture among those that are packed, or their number when it is not.
inline unsigned int findPackedUnit(const PbsMaterialParameters& parameters,
                                   const ovGraphics::Texture* texture) {
    const auto& packed = parameters.packedTextures;
    const auto isIt = [&](const PbsTexture& entry) { return entry.get() == texture; };
    return static_cast<unsigned int>(std::find_if(packed.begin(), packed.end(), isIt) - packed.begin());
}

/// A colour, and the texture that replaces it or, with the mix switch, is multiplied by it.
struct PbsColorProperty {
    ovMemory::StringView memberName; ///< of the colour in trees
    const PbsTextureProperty& texture;
    ovMaths::Vector PbsMaterialParameters::*color;
    bool PbsMaterialParameters::*mix;
    unsigned int PbsMaterialParameters::*constant;
};

inline constexpr PbsColorProperty PBS_ALBEDO = {
    "albedoColor", PBS_ALBEDO_TEXTURE, &PbsMaterialParameters::albedoColor,
    &PbsMaterialParameters::mixAlbedoColorAndTexture, &PbsMaterialParameters::albedoColorConstant};
inline constexpr PbsColorProperty PBS_SPECULAR = {
    "specularColor", PBS_SPECULAR_TEXTURE, &PbsMaterialParameters::specularColor,
    &PbsMaterialParameters::mixSpecularColorAndTexture, &PbsMaterialParameters::specularColorConstant};
inline constexpr PbsColorProperty PBS_EMISSIVE = {
    "emissiveColor", PBS_EMISSIVE_TEXTURE, &PbsMaterialParameters::emissiveColor,
    &PbsMaterialParameters::mixEmissiveColorAndTexture, &PbsMaterialParameters::emissiveColorConstant};
inline constexpr PbsColorProperty PBS_ENVIRONMENT = {
    "environmentColor", PBS_ENVIRONMENT_TEXTURE, &PbsMaterialParameters::environmentColor,
    &PbsMaterialParameters::mixEnvironmentColorAndTexture, &PbsMaterialParameters::environmentColorConstant};

inline constexpr std::array PBS_COLORS = {&PBS_ALBEDO, &PBS_SPECULAR, &PBS_EMISSIVE, &PBS_ENVIRONMENT};

/// A number, and the texture that replaces it or, with the mix switch, is multiplied by it.
struct PbsFactorProperty {
    ovMemory::StringView memberName; ///< of the number in trees
    const PbsTextureProperty& texture;
    float PbsMaterialParameters::*factor;
    bool PbsMaterialParameters::*mix;
    unsigned int PbsMaterialParameters::*constant;
};

inline constexpr PbsFactorProperty PBS_METALNESS = {
    "metalnessValue", PBS_METALNESS_TEXTURE, &PbsMaterialParameters::metalness,
    &PbsMaterialParameters::mixMetalnessFactorAndTexture, &PbsMaterialParameters::metalnessConstant};
inline constexpr PbsFactorProperty PBS_ROUGHNESS_GLOSSINESS = {
    "roughnessGlossinessValue", PBS_ROUGHNESS_GLOSSINESS_TEXTURE, &PbsMaterialParameters::roughnessGlossiness,
    &PbsMaterialParameters::mixRoughnessGlossinessFactorAndTexture,
    &PbsMaterialParameters::roughnessGlossinessConstant};
/// Its constant is there whatever the mix switch says: the cut-off shares it.
inline constexpr PbsFactorProperty PBS_ALPHA = {
    "alphaValue", PBS_ALPHA_TEXTURE, &PbsMaterialParameters::alpha,
    &PbsMaterialParameters::mixAlphaFactorAndTexture, &PbsMaterialParameters::alphaConstant};

inline constexpr std::array PBS_FACTORS = {&PBS_METALNESS, &PBS_ROUGHNESS_GLOSSINESS, &PBS_ALPHA};

/// Whether the shader of a material has the constant of a colour or a factor beside its texture.
template <typename Property>
bool isMixedOrAlone(const Property& property, const PbsMaterialParameters& parameters) {
    return parameters.*property.mix || !property.texture.isIn(parameters);
}

/// A switch that is a define of the pixel stage, and its name there.
struct PbsSwitch {
    bool PbsMaterialParameters::*field;
    ovMemory::StringView define;
};

/// The switches that programs are made for, in the order of their defines and of their bits in the key.
inline constexpr std::array PBS_SWITCHES = {
    PbsSwitch{&PbsMaterialParameters::mixAlbedoColorAndTexture, "MIX_ALBEDO_COLOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::mixSpecularColorAndTexture, "MIX_SPECULAR_COLOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::mixEmissiveColorAndTexture, "MIX_EMISSIVE_COLOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::mixMetalnessFactorAndTexture, "MIX_METALNESS_FACTOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::mixRoughnessGlossinessFactorAndTexture,
              "MIX_ROUGHNESS_GLOSSINESS_FACTOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::mixEnvironmentColorAndTexture, "MIX_ENVIRONMENT_COLOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::mixAlphaFactorAndTexture, "MIX_ALPHA_FACTOR_TEXTURE"},
    PbsSwitch{&PbsMaterialParameters::combineLightAndEnvironment, "COMBINE_LIGHT_AND_ENVIRONMENT"},
};

/// The names of a mesh's attributes, in the order of their defines and of their hashes in the key.
struct PbsAttribute {
    ovMemory::String PbsMaterialParameters::*name;
    ovMemory::StringView define;
};
inline constexpr std::array PBS_ATTRIBUTES = {
    PbsAttribute{&PbsMaterialParameters::positionAttributeName, "POSITION_SEMANTIC"},
    PbsAttribute{&PbsMaterialParameters::texCoordAttributeName, "TEXCOORD_SEMANTIC"},
    PbsAttribute{&PbsMaterialParameters::normalAttributeName, "NORMAL_SEMANTIC"},
    PbsAttribute{&PbsMaterialParameters::tangentAttributeName, "TANGENT_SEMANTIC"},
    PbsAttribute{&PbsMaterialParameters::binormalAttributeName, "BINORMAL_SEMANTIC"},
};

/// Units of the textures that are not packed; those that are come before them.
inline constexpr unsigned int PBS_SHADOW_MAP_UNIT = 8;
inline constexpr unsigned int PBS_ENVIRONMENT_UNIT = 9;
inline constexpr unsigned int PBS_IRRADIANCE_UNIT = 10;

/// Indices of the constant buffers, and of the slots of the second that are the same in every material.
inline constexpr unsigned int PBS_PASS_CONSTANTS = 0;
inline constexpr unsigned int PBS_CONSTANTS = 1;
inline constexpr unsigned int PBS_LIGHT_DIRECTION_CONSTANT = 0;
inline constexpr unsigned int PBS_LIGHT_COLOR_CONSTANT = 1;

} // namespace ovVeldris
