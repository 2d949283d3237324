// The physically based material.
#pragma once

#include <ovVeldris/materials/Material.h>
#include <ovVeldris/materials/PbsMaterialParameters.h>

namespace ovGraphics {
class Program;
class ShaderPassMemorySlot;
class System;
} // namespace ovGraphics

namespace ovVeldris {

class ProgramTrackersHolder;
class System;

/// A surface of microfacets over a diffuse base, lit by one directional light, by an environment, or by both.
/// docs/materials.md has the equations.
///
/// Setters store settings; load() makes them effective. Numbers, colours and textures also reach a loaded
/// shader at once, as long as its program reads them: a texture given to a material that was loaded without
/// one waits for the next load(), and so does all that changes the shader's text (channels, names, switches).
///
/// Textures and the camera are borrowed: what is destroyed reads as not set. Colours are scene-linear; w is
/// ignored. Factors and colours are not clamped.
class OV_API PbsMaterial final : public Material {
public:
    /// A new, unloaded material. @param system not owned; null means the System singleton, created when
    /// missing
    static ovMemory::UniquePtr<PbsMaterial> create(System* system);
    explicit PbsMaterial(System* system);
    ~PbsMaterial() override;

    /// What getSettings() gives of every PbsMaterial. Besides what files keep it has the channels of the
    /// textures and the shadow map.
    static const SettingTable& settings();

    /// Makes a program for the settings, or shares that of another material, and binds everything to the
    /// shader; a loaded material is unloaded first.
    /// @return false after one log line when the program or the shader cannot be loaded. The material is then
    ///         unusable until a later load() succeeds
    bool load() override;
    /// Gives the program back and drops the shader's bindings; settings and shader object stay.
    void unload() override;

    /// Adds the members that docs/materials.md lists to a node. Not kept in trees: the occlusion texture, the
    /// shadow map, the model, whether the environment is prefiltered, how binormals come about, the mix
    /// switches, the combination of light and environment, and the attributes' names.
    void exportClassToTree(ovExport::Node* node) override;
    /// Takes over what exportClassToTree() writes; each member is optional, and what is absent or of another
    /// kind changes nothing. Textures are looked up by name and created, unloaded, when missing. Reaches the
    /// shader with the next load().
    void importClassFromTree(ovExport::Node* node) override;

    // --- Light. Used without an environment texture, or with setCombineLightAndEnvironment(true).

    /// Where the light shines to, in world space, of any length but zero. Default (1, -1, 1).
    void setLightDirection(const ovMaths::Vector& direction);
    /// Default white.
    void setLightColor(const ovMaths::Vector& color);
    ovMaths::Vector getLightDirection() const { return _parameters.lightDirection; }
    ovMaths::Vector getLightColor() const { return _parameters.lightColor; }

    // --- Colours: the property itself without its texture; a factor of the texture with the mix switch.

    /// Diffuse reflectance. Default black.
    void setAlbedoColor(const ovMaths::Vector& color);
    /// Specular reflectance at normal incidence before it is multiplied by the metalness. Default 0.5.
    void setSpecularColor(const ovMaths::Vector& color);
    /// Light that the surface gives off. Default black.
    void setEmissiveColor(const ovMaths::Vector& color);
    /// Irradiance of the diffuse term without an irradiance texture. With the mix switch also a factor of
    /// both environment textures. With an environment texture it changes at once with the mix switch only.
    /// Default black.
    void setEnvironmentColor(const ovMaths::Vector& color);
    ovMaths::Vector getAlbedoColor() const { return _parameters.albedoColor; }
    ovMaths::Vector getSpecularColor() const { return _parameters.specularColor; }
    ovMaths::Vector getEmissiveColor() const { return _parameters.emissiveColor; }
    ovMaths::Vector getEnvironmentColor() const { return _parameters.environmentColor; }

    // --- Factors, 0 to 1. Textures replace them, or are multiplied by them with the mix switch.

    /// Factor of the specular colour, in both models. Default 0.5.
    void setMetalness(float metalness);
    /// Roughness, or glossiness (1 - roughness) in the glossiness model. Default 0.5.
    void setRoughnessGlossiness(float roughnessGlossiness);
    /// Opacity, written to the target's alpha. Default 1.
    void setAlpha(float alpha);
    /// Pixels whose alpha is this or less are not drawn. Default 0.00001.
    void setAlphaCutoff(float cutoff);
    float getMetalness() const { return _parameters.metalness; }
    float getRoughnessGlossiness() const { return _parameters.roughnessGlossiness; }
    float getAlpha() const { return _parameters.alpha; }
    float getAlphaCutoff() const { return _parameters.alphaCutoff; }

    // --- Textures of the surface, read at the mesh's texture coordinates; null (the default) for none.
    // Properties that read one texture share its unit: replacing one of them at once replaces both until the
    // next load().

    void setAlbedoTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels);
    void setSpecularTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels);
    void setEmissiveTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels);
    void setMetalnessTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel);
    void setRoughnessGlossinessTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel);
    void setAlphaTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel);
    /// Factor of the diffuse term: 0 hidden from the surroundings, 1 open.
    void setOcclusionTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel);
    /// Normals in the frame of tangent, binormal and normal, -1 to 1 stored as 0 to 1.
    void setNormalMapTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels);
    ovGraphics::Texture* getAlbedoTexture() const { return _parameters.albedoTexture.get(); }
    ovGraphics::Texture* getSpecularTexture() const { return _parameters.specularTexture.get(); }
    ovGraphics::Texture* getEmissiveTexture() const { return _parameters.emissiveTexture.get(); }
    ovGraphics::Texture* getMetalnessTexture() const { return _parameters.metalnessTexture.get(); }
    ovGraphics::Texture* getRoughnessGlossinessTexture() const {
        return _parameters.roughnessGlossinessTexture.get();
    }
    ovGraphics::Texture* getAlphaTexture() const { return _parameters.alphaTexture.get(); }
    ovGraphics::Texture* getOcclusionTexture() const { return _parameters.occlusionTexture.get(); }
    ovGraphics::Texture* getNormalMapTexture() const { return _parameters.normalMapTexture.get(); }
    THREE_CHANNEL_PACK getAlbedoTextureChannels() const { return _parameters.albedoTextureChannels; }
    THREE_CHANNEL_PACK getSpecularTextureChannels() const { return _parameters.specularTextureChannels; }
    THREE_CHANNEL_PACK getEmissiveTextureChannels() const { return _parameters.emissiveTextureChannels; }
    ONE_CHANNEL_PACK getMetalnessTextureChannels() const { return _parameters.metalnessTextureChannel; }
    ONE_CHANNEL_PACK getRoughnessGlossinessTextureChannels() const {
        return _parameters.roughnessGlossinessTextureChannel;
    }
    ONE_CHANNEL_PACK getAlphaTextureChannels() const { return _parameters.alphaTextureChannel; }
    ONE_CHANNEL_PACK getOcclusionTextureChannels() const { return _parameters.occlusionTextureChannel; }
    THREE_CHANNEL_PACK getNormalMapTextureChannels() const { return _parameters.normalMapTextureChannels; }

    // --- Surroundings.

    /// Radiance from all around, for specular reflection; null (the default) for none. A cube, or a flat map
    /// by longitude and latitude.
    /// @param prefiltered each mip is already blurred for a roughness from 0 (the first) to 1 (the last), and
    ///        one sample is read; otherwise 1024 samples are. Waits for load()
    void setEnvironmentTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels, bool prefiltered);
    /// Irradiance over pi by normal, for the diffuse term; null (the default): the environment colour.
    void setIrradianceTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels);
    /// Depth as the light sees it, and the camera of the light. Null (the default): no shadows.
    void setShadowMapTexture(ovGraphics::Texture* texture, ovGraphics::Camera* camera,
                             const ShadowMapParameters& parameters);
    ovGraphics::Texture* getEnvironmentTexture() const { return _parameters.environmentTexture.get(); }
    ovGraphics::Texture* getIrradianceTexture() const { return _parameters.irradianceTexture.get(); }
    THREE_CHANNEL_PACK getEnvironmentTextureChannels() const {
        return _parameters.environmentTextureChannels;
    }
    THREE_CHANNEL_PACK getIrradianceTextureChannels() const { return _parameters.irradianceTextureChannels; }
    bool getEnvironmentPrefiltered() const { return _parameters.environmentPrefiltered; }
    ovGraphics::Texture* getShadowMapTexture() const { return _parameters.shadowMapTexture.get(); }
    ovGraphics::Camera* getShadowMapCamera() const { return _parameters.shadowMapCamera.get(); }
    const ShadowMapParameters& getShadowMapParameters() const { return _parameters.shadowMapParameters; }

    // --- Switches. All of them wait for load().

    /// Default SPECULAR_METALNESS_ROUGHNESS.
    void setPbsModel(PBS_MODEL model) { _parameters.pbsModel = model; }
    /// Whether a map that is not loaded yet when the material is counts as a cube. Default true.
    void setEnvironmentTextureIsCubeByDefault(bool isCube) {
        _parameters.environmentTextureIsCubeByDefault = isCube;
    }
    void setIrradianceTextureIsCubeByDefault(bool isCube) {
        _parameters.irradianceTextureIsCubeByDefault = isCube;
    }
    /// Compute binormals as normal x tangent instead of reading them from the mesh. Default true.
    void setReconstructBinormals(bool reconstruct) { _parameters.reconstructBinormals = reconstruct; }
    /// Multiply the texture by the colour or factor instead of ignoring the latter. Default false.
    void setMixAlbedoColorAndTexture(bool mix) { _parameters.mixAlbedoColorAndTexture = mix; }
    void setMixSpecularColorAndTexture(bool mix) { _parameters.mixSpecularColorAndTexture = mix; }
    void setMixEmissiveColorAndTexture(bool mix) { _parameters.mixEmissiveColorAndTexture = mix; }
    void setMixMetalnessFactorAndTexture(bool mix) { _parameters.mixMetalnessFactorAndTexture = mix; }
    void setMixRoughnessGlossinessFactorAndTexture(bool mix) {
        _parameters.mixRoughnessGlossinessFactorAndTexture = mix;
    }
    void setMixEnvironmentColorAndTexture(bool mix) { _parameters.mixEnvironmentColorAndTexture = mix; }
    void setMixAlphaFactorAndTexture(bool mix) { _parameters.mixAlphaFactorAndTexture = mix; }
    /// Add the light to the environment texture instead of leaving it out. Default false.
    void setCombineLightAndEnvironment(bool combine) { _parameters.combineLightAndEnvironment = combine; }
    PBS_MODEL getPbsModel() const { return _parameters.pbsModel; }
    bool getEnvironmentTextureIsCubeByDefault() const {
        return _parameters.environmentTextureIsCubeByDefault;
    }
    bool getIrradianceTextureIsCubeByDefault() const { return _parameters.irradianceTextureIsCubeByDefault; }
    bool getReconstructBinormals() const { return _parameters.reconstructBinormals; }
    bool getMixAlbedoColorAndTexture() const { return _parameters.mixAlbedoColorAndTexture; }
    bool getMixSpecularColorAndTexture() const { return _parameters.mixSpecularColorAndTexture; }
    bool getMixEmissiveColorAndTexture() const { return _parameters.mixEmissiveColorAndTexture; }
    bool getMixMetalnessFactorAndTexture() const { return _parameters.mixMetalnessFactorAndTexture; }
    bool getMixRoughnessGlossinessFactorAndTexture() const {
        return _parameters.mixRoughnessGlossinessFactorAndTexture;
    }
    bool getMixEnvironmentColorAndTexture() const { return _parameters.mixEnvironmentColorAndTexture; }
    bool getMixAlphaFactorAndTexture() const { return _parameters.mixAlphaFactorAndTexture; }
    bool getCombineLightAndEnvironment() const { return _parameters.combineLightAndEnvironment; }

    // --- Names of the mesh's vertex attributes, which must be identifiers. All of them wait for load().
    // Defaults: POSITION, TEXCOORD, NORMAL, TANGENT, BINORMAL.

    void setPositionAttributeName(ovMemory::StringView name) { _parameters.positionAttributeName = name; }
    void setTexCoordAttributeName(ovMemory::StringView name) { _parameters.texCoordAttributeName = name; }
    void setNormalAttributeName(ovMemory::StringView name) { _parameters.normalAttributeName = name; }
    void setTangentAttributeName(ovMemory::StringView name) { _parameters.tangentAttributeName = name; }
    void setBinormalAttributeName(ovMemory::StringView name) { _parameters.binormalAttributeName = name; }
    ovMemory::String getPositionAttributeName() const { return _parameters.positionAttributeName; }
    ovMemory::String getTexCoordAttributeName() const { return _parameters.texCoordAttributeName; }
    ovMemory::String getNormalAttributeName() const { return _parameters.normalAttributeName; }
    ovMemory::String getTangentAttributeName() const { return _parameters.tangentAttributeName; }
    ovMemory::String getBinormalAttributeName() const { return _parameters.binormalAttributeName; }

private:
    class SettingWriter;

    bool _packTextureSlots();
    bool _prepareProgram();
    bool _prepareShader();

    ovGraphics::System* _getGraphicsSystem() const;
    /// The shader when it is loaded, so that settings can reach it at once; otherwise null.
    ovGraphics::Shader* _getLoadedShader() const;
    /// A slot of the pixel stage's constants of a loaded shader; null when there is none.
    ovGraphics::ShaderPassMemorySlot* _getLoadedConstant(unsigned int index) const;
    void _setVector(ovMaths::Vector PbsSettings::*field, const ovMaths::Vector& value);
    void _setNumber(float PbsSettings::*field, float value);
    void _writeIfLoaded(const PbsProperty& property) const;
    void _setTexture(PbsTexture PbsSettings::*field, ovGraphics::Texture* texture);
    void _logLoadFailure(ovMemory::StringView what) const;

    ovMemory::Borrowed<System> _system;
    ovMemory::Borrowed<ovGraphics::Program> _program; ///< of the tracker; null when unloaded
    PbsMaterialParameters _loadedParameters;          ///< as of the last load()
    PbsMaterialParameters _parameters;                ///< as set now
};

} // namespace ovVeldris
