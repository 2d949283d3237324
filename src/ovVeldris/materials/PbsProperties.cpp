#include <ovVeldris/materials/PbsProperties.h>

#include <algorithm>

namespace ovVeldris {

namespace {

// The order of the rows decides the order of members in files, of constants in the shader and of defines in
// its text. Files are compared as texts and programs are shared by theirs, so a new row goes to the end of
// its kind. The numbers of the bits and units are part of the interface: programs are named by their key.
constexpr auto PROPERTIES = std::to_array<PbsProperty>({
    {
        .value = {.name = {"light-direction", "lightDirection", "where the light shines to, in world space"},
                  .vector = &PbsSettings::lightDirection,
                  .isDirection = true},
    },
    {
        .value = {.name = {"light-color", "lightColor", "colour of the light"},
                  .vector = &PbsSettings::lightColor},
    },
    {
        .define = "ALBEDO",
        .value = {.name = {"albedo-color", "albedoColor", "diffuse reflectance"},
                  .vector = &PbsSettings::albedoColor},
        .texture = {.name = {"albedo-texture", "albedoTexture", "diffuse reflectance"},
                    .field = &PbsSettings::albedoTexture,
                    .vectorChannels = &PbsSettings::albedoTextureChannels,
                    .channelsSetting = "albedo-texture-channels",
                    .keyBit = 0,
                    .channelsBit = 13,
                    .packingRank = 0},
        .mix = {.name = {"mix-albedo-color-and-texture", "mixAlbedoColorAndTexture",
                         "multiply the albedo texture by the colour"},
                .field = &PbsSettings::mixAlbedoColorAndTexture,
                .define = "MIX_ALBEDO_COLOR_TEXTURE",
                .hashedKeyBit = 0},
    },
    {
        .define = "SPECULAR",
        .value = {.name =
                      {"specular-color", "specularColor",
                       "specular reflectance at normal incidence, before it is multiplied by the metalness"},
                  .vector = &PbsSettings::specularColor},
        .texture = {.name = {"specular-texture", "specularTexture",
                             "specular reflectance at normal incidence"},
                    .field = &PbsSettings::specularTexture,
                    .vectorChannels = &PbsSettings::specularTextureChannels,
                    .channelsSetting = "specular-texture-channels",
                    .keyBit = 1,
                    .channelsBit = 16,
                    .packingRank = 1},
        .mix = {.name = {"mix-specular-color-and-texture", "mixSpecularColorAndTexture",
                         "multiply the specular texture by the colour"},
                .field = &PbsSettings::mixSpecularColorAndTexture,
                .define = "MIX_SPECULAR_COLOR_TEXTURE",
                .hashedKeyBit = 1},
    },
    {
        .define = "EMISSIVE",
        .value = {.name = {"emissive-color", "emissiveColor", "light that the surface gives off"},
                  .vector = &PbsSettings::emissiveColor},
        .texture = {.name = {"emissive-texture", "emissiveTexture", "light that the surface gives off"},
                    .field = &PbsSettings::emissiveTexture,
                    .vectorChannels = &PbsSettings::emissiveTextureChannels,
                    .channelsSetting = "emissive-texture-channels",
                    .keyBit = 2,
                    .channelsBit = 19,
                    .packingRank = 2},
        .mix = {.name = {"mix-emissive-color-and-texture", "mixEmissiveColorAndTexture",
                         "multiply the emissive texture by the colour"},
                .field = &PbsSettings::mixEmissiveColorAndTexture,
                .define = "MIX_EMISSIVE_COLOR_TEXTURE",
                .hashedKeyBit = 2},
    },
    {
        .define = "METALNESS",
        .value = {.name = {"metalness", "metalnessValue",
                           "factor of the specular reflectance, in both models"},
                  .number = &PbsSettings::metalness},
        .texture = {.name = {"metalness-texture", "metalnessTexture", "factor of the specular reflectance"},
                    .field = &PbsSettings::metalnessTexture,
                    .numberChannel = &PbsSettings::metalnessTextureChannel,
                    .channelsSetting = "metalness-texture-channels",
                    .keyBit = 5,
                    .channelsBit = 31,
                    .packingRank = 4},
        .mix = {.name = {"mix-metalness-factor-and-texture", "mixMetalnessFactorAndTexture",
                         "multiply the metalness texture by the number"},
                .field = &PbsSettings::mixMetalnessFactorAndTexture,
                .define = "MIX_METALNESS_FACTOR_TEXTURE",
                .hashedKeyBit = 3},
    },
    {
        .define = "ROUGHNESS_GLOSSINESS",
        .value = {.name = {"roughness-glossiness", "roughnessGlossinessValue",
                           "roughness, or glossiness (1 - roughness) in the glossiness model"},
                  .number = &PbsSettings::roughnessGlossiness},
        .texture = {.name = {"roughness-glossiness-texture", "roughnessGlossinessTexture",
                             "roughness, or glossiness in the glossiness model"},
                    .field = &PbsSettings::roughnessGlossinessTexture,
                    .numberChannel = &PbsSettings::roughnessGlossinessTextureChannel,
                    .channelsSetting = "roughness-glossiness-texture-channels",
                    .keyBit = 6,
                    .channelsBit = 33,
                    .packingRank = 3},
        .mix = {.name = {"mix-roughness-glossiness-factor-and-texture",
                         "mixRoughnessGlossinessFactorAndTexture",
                         "multiply the roughness or glossiness texture by the number"},
                .field = &PbsSettings::mixRoughnessGlossinessFactorAndTexture,
                .define = "MIX_ROUGHNESS_GLOSSINESS_FACTOR_TEXTURE",
                .hashedKeyBit = 4},
    },
    // The first word of its defines is short, but for the mix switch.
    {
        .define = "ENV",
        .value = {.name = {"environment-color", "environmentColor",
                           "irradiance without an irradiance texture; mixed, a factor of both maps"},
                  .vector = &PbsSettings::environmentColor},
        .texture = {.name = {"environment-texture", "environmentTexture",
                             "radiance from all around: a cube, or a flat map by longitude and latitude"},
                    .field = &PbsSettings::environmentTexture,
                    .vectorChannels = &PbsSettings::environmentTextureChannels,
                    .channelsSetting = "environment-texture-channels",
                    .keyBit = 3,
                    .channelsBit = 22,
                    .unit = 9},
        .mix = {.name = {"mix-environment-color-and-texture", "mixEnvironmentColorAndTexture",
                         "multiply both maps of the surroundings by the colour"},
                .field = &PbsSettings::mixEnvironmentColorAndTexture,
                .define = "MIX_ENVIRONMENT_COLOR_TEXTURE",
                .hashedKeyBit = 5},
        .isCube = {.name = {"environment-texture-is-cube-by-default", "environmentTextureIsCubeByDefault",
                            "an environment texture that is not loaded yet counts as a cube"},
                   .field = &PbsSettings::environmentTextureIsCubeByDefault,
                   .isInTree = true},
        .prefiltered = {.name = {"environment-prefiltered", "environmentPrefiltered",
                                 "the mips of the environment texture are blurred by roughness already"},
                        .field = &PbsSettings::environmentPrefiltered,
                        .keyBit = 11},
        .substitute = &PbsSettings::irradianceTexture,
        .needsSize = true,
    },
    {
        .define = "ALPHA",
        .value = {.name = {"alpha", "alphaValue", "opacity, written to the target's alpha"},
                  .number = &PbsSettings::alpha},
        .second = {.name = {"alpha-cutoff", "alphaCutoff",
                            "pixels whose alpha is this or less are not drawn"},
                   .number = &PbsSettings::alphaCutoff},
        .texture = {.name = {"alpha-texture", "alphaTexture", "opacity"},
                    .field = &PbsSettings::alphaTexture,
                    .numberChannel = &PbsSettings::alphaTextureChannel,
                    .channelsSetting = "alpha-texture-channels",
                    .keyBit = 7,
                    .channelsBit = 35,
                    .packingRank = 5},
        .mix = {.name = {"mix-alpha-factor-and-texture", "mixAlphaFactorAndTexture",
                         "multiply the alpha texture by the number"},
                .field = &PbsSettings::mixAlphaFactorAndTexture,
                .define = "MIX_ALPHA_FACTOR_TEXTURE",
                .hashedKeyBit = 6},
    },
    {
        .define = "NORMAL_MAP",
        .texture =
            {.name = {"normal-map-texture", "normalMap",
                      "normals in the frame of tangent, binormal and normal, -1 to 1 stored as 0 to 1"},
             .field = &PbsSettings::normalMapTexture,
             .vectorChannels = &PbsSettings::normalMapTextureChannels,
             .channelsSetting = "normal-map-texture-channels",
             .keyBit = 9,
             .channelsBit = 28,
             .packingRank = 6},
    },
    {
        .define = "OCCLUSION",
        .texture = {.name = {"occlusion-texture", "occlusionTexture",
                             "factor of the diffuse term: 0 hidden from the surroundings, 1 open"},
                    .field = &PbsSettings::occlusionTexture,
                    .numberChannel = &PbsSettings::occlusionTextureChannel,
                    .channelsSetting = "occlusion-texture-channels",
                    .isInTree = false,
                    .keyBit = 8,
                    .channelsBit = 37,
                    .packingRank = 7},
    },
    {
        .define = "IRRADIANCE",
        .texture = {.name = {"irradiance-texture", "irradianceTexture", "irradiance over pi by normal"},
                    .field = &PbsSettings::irradianceTexture,
                    .vectorChannels = &PbsSettings::irradianceTextureChannels,
                    .channelsSetting = "irradiance-texture-channels",
                    .keyBit = 4,
                    .channelsBit = 25,
                    .unit = 10},
        .isCube = {.name = {"irradiance-texture-is-cube-by-default", "irradianceTextureIsCubeByDefault",
                            "an irradiance texture that is not loaded yet counts as a cube"},
                   .field = &PbsSettings::irradianceTextureIsCubeByDefault,
                   .isInTree = true},
    },
    // Its camera, kernel and bias are PbsMaterial::setShadowMapTexture()'s.
    {
        .define = "SHADOW",
        .texture = {.name = {"shadow-map-texture", "", "depth as the light sees it"},
                    .field = &PbsSettings::shadowMapTexture,
                    .isInTree = false,
                    .keyBit = 10,
                    .unit = 8},
        .needsSize = true,
    },
});

constexpr std::array SWITCHES = {
    PbsSwitch{.name = {"reconstruct-binormals", "reconstructBinormals",
                       "compute binormals as normal x tangent instead of reading them from the mesh"},
              .field = &PbsSettings::reconstructBinormals,
              .keyBit = 12},
    PbsSwitch{.name = {"combine-light-and-environment", "combineLightAndEnvironment",
                       "add the light to the environment texture instead of leaving it out"},
              .field = &PbsSettings::combineLightAndEnvironment,
              .define = "COMBINE_LIGHT_AND_ENVIRONMENT",
              .hashedKeyBit = 7},
};

constexpr std::array ATTRIBUTES = {
    PbsAttribute{{"position-attribute-name", "positionAttributeName", "attribute that holds positions"},
                 &PbsSettings::positionAttributeName,
                 "POSITION_SEMANTIC"},
    PbsAttribute{
        {"tex-coord-attribute-name", "texCoordAttributeName", "attribute that holds texture coordinates"},
        &PbsSettings::texCoordAttributeName,
        "TEXCOORD_SEMANTIC"},
    PbsAttribute{{"normal-attribute-name", "normalAttributeName", "attribute that holds normals"},
                 &PbsSettings::normalAttributeName,
                 "NORMAL_SEMANTIC"},
    PbsAttribute{{"tangent-attribute-name", "tangentAttributeName", "attribute that holds tangents"},
                 &PbsSettings::tangentAttributeName,
                 "TANGENT_SEMANTIC"},
    PbsAttribute{{"binormal-attribute-name", "binormalAttributeName", "attribute that holds binormals"},
                 &PbsSettings::binormalAttributeName,
                 "BINORMAL_SEMANTIC"},
};

// A search of thirteen rows. It runs when a setting changes and never while a frame is drawn.
template <typename Condition>
const PbsProperty& getRow(const Condition& condition) {
    return *std::find_if(PROPERTIES.begin(), PROPERTIES.end(), condition);
}

} // namespace

const std::array<PbsProperty, PBS_PROPERTY_COUNT>& pbsProperties() {
    return PROPERTIES;
}

ovMemory::BufferView<const PbsSwitch> pbsSwitches() {
    return SWITCHES;
}

ovMemory::BufferView<const PbsAttribute> pbsAttributes() {
    return ATTRIBUTES;
}

ovMaths::Vector PbsProperty::getConstant(const PbsSettings& settings) const {
    if (value.vector)
        return settings.*value.vector;
    return {settings.*value.number, second ? settings.*second.number : 0.0f};
}

const PbsProperty& getPbsProperty(ovMaths::Vector PbsSettings::*field) {
    return getRow([&](const PbsProperty& property) { return property.value.vector == field; });
}

const PbsProperty& getPbsProperty(float PbsSettings::*field) {
    return getRow([&](const PbsProperty& property) {
        return property.value.number == field || property.second.number == field;
    });
}

const PbsProperty& getPbsProperty(PbsTexture PbsSettings::*field) {
    return getRow([&](const PbsProperty& property) { return property.texture.field == field; });
}

} // namespace ovVeldris
