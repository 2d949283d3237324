// What a user may set of a PBS material.
#pragma once

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/materials/OneChannelPackUtils.h>
#include <ovVeldris/materials/ThreeChannelPackUtils.h>
#include <ovVeldris/shaders/ShadowMapParameters.h>

namespace ovVeldris {

/// How specular reflection is described. The numbers are part of the interface of scripts and files; every
/// number but 1 means the first.
enum class PBS_MODEL : uint32_t { SPECULAR_METALNESS_ROUGHNESS = 0, SPECULAR_GLOSSINESS = 1 };

inline constexpr ovMemory::EnumEntry<PBS_MODEL> PBS_MODEL_ENTRIES[] = {
    {PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS, "METALNESS_ROUGHNESS"},
    {PBS_MODEL::SPECULAR_GLOSSINESS, "SPECULAR_GLOSSINESS"},
};
constexpr ovMemory::EnumTable<PBS_MODEL> enumTable(PBS_MODEL) {
    return {"PBS_MODEL", PBS_MODEL_ENTRIES};
}

/// A texture that a property reads, owned by others. When it is destroyed it reads as null, but it stays
/// named: the shader that was made for a texture does not change with it.
class PbsTexture {
public:
    PbsTexture() = default;
    PbsTexture(ovGraphics::Texture* texture)
        : _texture(texture)
        , _named(texture != nullptr) {}

    /// Null when none was given, or when it was destroyed.
    ovGraphics::Texture* get() const { return _texture.get(); }
    /// Whether a texture was given, destroyed since or not.
    bool isNamed() const { return _named; }
    /// Takes back the name of a texture that was destroyed.
    void forgetIfDestroyed() { _named = get() != nullptr; }

private:
    ovMemory::Borrowed<ovGraphics::Texture> _texture;
    bool _named = false;
};

/// The settings of a PbsMaterial with their defaults. Colours are scene-linear red, green, blue; w is not
/// used. What the settings mean is with PbsMaterial's setters; what they are called elsewhere, and where a
/// shader reads them, is in PbsProperties.h.
struct PbsSettings {
    ovMaths::Vector lightDirection{1.0f, -1.0f, 1.0f};
    ovMaths::Vector lightColor{1.0f, 1.0f, 1.0f};
    ovMaths::Vector albedoColor;
    ovMaths::Vector specularColor{0.5f, 0.5f, 0.5f};
    ovMaths::Vector emissiveColor;
    ovMaths::Vector environmentColor;
    ShadowMapParameters shadowMapParameters;
    ovMemory::String positionAttributeName = "POSITION";
    ovMemory::String texCoordAttributeName = "TEXCOORD";
    ovMemory::String normalAttributeName = "NORMAL";
    ovMemory::String tangentAttributeName = "TANGENT";
    ovMemory::String binormalAttributeName = "BINORMAL";

    float metalness = 0.5f;
    float roughnessGlossiness = 0.5f;
    float alpha = 1.0f;
    float alphaCutoff = 0.00001f;

    PbsTexture albedoTexture;
    PbsTexture specularTexture;
    PbsTexture emissiveTexture;
    PbsTexture environmentTexture;
    PbsTexture irradianceTexture;
    PbsTexture metalnessTexture;
    PbsTexture roughnessGlossinessTexture;
    PbsTexture alphaTexture;
    PbsTexture occlusionTexture;
    PbsTexture normalMapTexture;
    PbsTexture shadowMapTexture;
    ovMemory::Borrowed<ovGraphics::Camera> shadowMapCamera;

    THREE_CHANNEL_PACK albedoTextureChannels = THREE_CHANNEL_PACK::RGB;
    THREE_CHANNEL_PACK specularTextureChannels = THREE_CHANNEL_PACK::RGB;
    THREE_CHANNEL_PACK emissiveTextureChannels = THREE_CHANNEL_PACK::RGB;
    THREE_CHANNEL_PACK environmentTextureChannels = THREE_CHANNEL_PACK::RGB;
    THREE_CHANNEL_PACK irradianceTextureChannels = THREE_CHANNEL_PACK::RGB;
    ONE_CHANNEL_PACK metalnessTextureChannel = ONE_CHANNEL_PACK::R;
    ONE_CHANNEL_PACK roughnessGlossinessTextureChannel = ONE_CHANNEL_PACK::R;
    ONE_CHANNEL_PACK alphaTextureChannel = ONE_CHANNEL_PACK::R;
    ONE_CHANNEL_PACK occlusionTextureChannel = ONE_CHANNEL_PACK::R;
    THREE_CHANNEL_PACK normalMapTextureChannels = THREE_CHANNEL_PACK::RGB;
    PBS_MODEL pbsModel = PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS;

    bool environmentPrefiltered = false;
    bool environmentTextureIsCubeByDefault = true;
    bool irradianceTextureIsCubeByDefault = true;
    bool reconstructBinormals = true;
    bool mixAlbedoColorAndTexture = false;
    bool mixSpecularColorAndTexture = false;
    bool mixEmissiveColorAndTexture = false;
    bool mixMetalnessFactorAndTexture = false;
    bool mixRoughnessGlossinessFactorAndTexture = false;
    bool mixEnvironmentColorAndTexture = false;
    bool mixAlphaFactorAndTexture = false;
    bool combineLightAndEnvironment = false;
};

} // namespace ovVeldris
