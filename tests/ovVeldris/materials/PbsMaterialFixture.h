// The base of tests of PBS materials, and their settings as tables.
#pragma once

#include <cstring>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/PbsMaterial.h>

/// Gives a test a material that is made when first asked for, and what its shader is bound to.
class PbsMaterialFixture : public EffectFixture {
protected:
    void TearDown() override {
        _material.reset();
        _textures.clear();
        EffectFixture::TearDown();
    }

    ovVeldris::PbsMaterial& material() {
        if (!_material)
            _material = ovVeldris::PbsMaterial::create(getSystem());
        return *_material;
    }
    ovGraphics::Shader& shader() { return *material().getShader(); }

    /// A new loaded texture of the test.
    ovGraphics::Texture* texture(unsigned int width = 1) {
        return _textures.emplace_back(makeTexture(FloatPicture(width, 1))).get();
    }

    /// Registers of a slot of a constant buffer as they would be drawn with.
    ovMemory::Buffer<float> registers(unsigned int slot, unsigned int buffer = 1) {
        const ovGraphics::ShaderPassMemorySlot* const memory =
            shader().getConstantBuffer(buffer, 0)->getPassMemorySlot(slot);
        if (!memory) {
            ADD_FAILURE() << "no slot " << slot;
            return {};
        }
        ovMemory::Buffer<float> values(memory->getRegisterCount() * 4);
        memory->evaluate({&getGraphics(), nullptr}, reinterpret_cast<unsigned char*>(values.data()));
        return values;
    }
    ovMaths::Vector vector(unsigned int slot) {
        const ovMemory::Buffer<float> values = registers(slot);
        return values.size() == 4 ? ovMaths::Vector(values[0], values[1], values[2], values[3])
                                  : ovMaths::Vector();
    }
    ovMemory::Buffer<int> integers(unsigned int slot) {
        const ovMemory::Buffer<float> values = registers(slot);
        ovMemory::Buffer<int> result(values.size());
        std::memcpy(result.data(), values.data(), values.size() * sizeof(float));
        return result;
    }
    /// Every slot, to see that nothing was written.
    ovMemory::Buffer<ovMemory::Buffer<float>> allRegisters() {
        ovMemory::Buffer<ovMemory::Buffer<float>> all;
        for (unsigned int i = 0; i < shader().getConstantBuffer(1, 0)->getPassMemorySlotCount(); ++i)
            all.push_back(registers(i));
        return all;
    }

    void load() { ASSERT_TRUE(material().load()) << getLog().getText() << getGraphicsLogger().getText(); }

private:
    ovMemory::UniquePtr<ovVeldris::PbsMaterial> _material;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> _textures;
};

/// A value that is no default.
inline constexpr ovMaths::Vector NEW = {0.25f, 0.5f, 0.75f, 1.0f};

/// Slots of a material without textures.
enum SLOT : unsigned int {
    LIGHT_DIRECTION,
    LIGHT_COLOR,
    ALBEDO,
    SPECULAR,
    EMISSIVE,
    ENVIRONMENT,
    METALNESS,
    ROUGHNESS,
    ALPHA
};

struct ColorProperty {
    const char* name;
    void (ovVeldris::PbsMaterial::*set)(const ovMaths::Vector&);
    ovMaths::Vector (ovVeldris::PbsMaterial::*get)() const;
    ovMaths::Vector byDefault;
    SLOT slot;
};
inline const ColorProperty COLORS[] = {
    {"light direction",
     &ovVeldris::PbsMaterial::setLightDirection,
     &ovVeldris::PbsMaterial::getLightDirection,
     {1, -1, 1},
     LIGHT_DIRECTION},
    {"light colour",
     &ovVeldris::PbsMaterial::setLightColor,
     &ovVeldris::PbsMaterial::getLightColor,
     {1, 1, 1},
     LIGHT_COLOR},
    {"albedo", &ovVeldris::PbsMaterial::setAlbedoColor, &ovVeldris::PbsMaterial::getAlbedoColor, {}, ALBEDO},
    {"specular",
     &ovVeldris::PbsMaterial::setSpecularColor,
     &ovVeldris::PbsMaterial::getSpecularColor,
     {0.5f, 0.5f, 0.5f},
     SPECULAR},
    {"emissive",
     &ovVeldris::PbsMaterial::setEmissiveColor,
     &ovVeldris::PbsMaterial::getEmissiveColor,
     {},
     EMISSIVE},
    {"environment",
     &ovVeldris::PbsMaterial::setEnvironmentColor,
     &ovVeldris::PbsMaterial::getEnvironmentColor,
     {},
     ENVIRONMENT},
};

struct FactorProperty {
    const char* name;
    void (ovVeldris::PbsMaterial::*set)(float);
    float (ovVeldris::PbsMaterial::*get)() const;
    float byDefault;
    SLOT slot;
};
inline const FactorProperty FACTORS[] = {
    {"metalness", &ovVeldris::PbsMaterial::setMetalness, &ovVeldris::PbsMaterial::getMetalness, 0.5f,
     METALNESS},
    {"roughness", &ovVeldris::PbsMaterial::setRoughnessGlossiness,
     &ovVeldris::PbsMaterial::getRoughnessGlossiness, 0.5f, ROUGHNESS},
    {"alpha", &ovVeldris::PbsMaterial::setAlpha, &ovVeldris::PbsMaterial::getAlpha, 1.0f, ALPHA},
    {"alpha cutoff", &ovVeldris::PbsMaterial::setAlphaCutoff, &ovVeldris::PbsMaterial::getAlphaCutoff,
     0.00001f, ALPHA},
};

template <typename Pack>
struct TextureProperty {
    const char* name;
    void (ovVeldris::PbsMaterial::*set)(ovGraphics::Texture*, Pack);
    ovGraphics::Texture* (ovVeldris::PbsMaterial::*get)() const;
    Pack (ovVeldris::PbsMaterial::*getChannels)() const;
};
inline const TextureProperty<ovVeldris::THREE_CHANNEL_PACK> VECTOR_TEXTURES[] = {
    {"albedo", &ovVeldris::PbsMaterial::setAlbedoTexture, &ovVeldris::PbsMaterial::getAlbedoTexture,
     &ovVeldris::PbsMaterial::getAlbedoTextureChannels},
    {"specular", &ovVeldris::PbsMaterial::setSpecularTexture, &ovVeldris::PbsMaterial::getSpecularTexture,
     &ovVeldris::PbsMaterial::getSpecularTextureChannels},
    {"emissive", &ovVeldris::PbsMaterial::setEmissiveTexture, &ovVeldris::PbsMaterial::getEmissiveTexture,
     &ovVeldris::PbsMaterial::getEmissiveTextureChannels},
    {"normal map", &ovVeldris::PbsMaterial::setNormalMapTexture, &ovVeldris::PbsMaterial::getNormalMapTexture,
     &ovVeldris::PbsMaterial::getNormalMapTextureChannels},
    {"irradiance", &ovVeldris::PbsMaterial::setIrradianceTexture,
     &ovVeldris::PbsMaterial::getIrradianceTexture, &ovVeldris::PbsMaterial::getIrradianceTextureChannels},
};
inline const TextureProperty<ovVeldris::ONE_CHANNEL_PACK> NUMBER_TEXTURES[] = {
    {"metalness", &ovVeldris::PbsMaterial::setMetalnessTexture, &ovVeldris::PbsMaterial::getMetalnessTexture,
     &ovVeldris::PbsMaterial::getMetalnessTextureChannels},
    {"roughness", &ovVeldris::PbsMaterial::setRoughnessGlossinessTexture,
     &ovVeldris::PbsMaterial::getRoughnessGlossinessTexture,
     &ovVeldris::PbsMaterial::getRoughnessGlossinessTextureChannels},
    {"alpha", &ovVeldris::PbsMaterial::setAlphaTexture, &ovVeldris::PbsMaterial::getAlphaTexture,
     &ovVeldris::PbsMaterial::getAlphaTextureChannels},
    {"occlusion", &ovVeldris::PbsMaterial::setOcclusionTexture, &ovVeldris::PbsMaterial::getOcclusionTexture,
     &ovVeldris::PbsMaterial::getOcclusionTextureChannels},
};

struct Switch {
    const char* name;
    void (ovVeldris::PbsMaterial::*set)(bool);
    bool (ovVeldris::PbsMaterial::*get)() const;
    bool byDefault;
};
inline const Switch SWITCHES[] = {
    {"environment is cube", &ovVeldris::PbsMaterial::setEnvironmentTextureIsCubeByDefault,
     &ovVeldris::PbsMaterial::getEnvironmentTextureIsCubeByDefault, true},
    {"irradiance is cube", &ovVeldris::PbsMaterial::setIrradianceTextureIsCubeByDefault,
     &ovVeldris::PbsMaterial::getIrradianceTextureIsCubeByDefault, true},
    {"reconstruct binormals", &ovVeldris::PbsMaterial::setReconstructBinormals,
     &ovVeldris::PbsMaterial::getReconstructBinormals, true},
    {"mix albedo", &ovVeldris::PbsMaterial::setMixAlbedoColorAndTexture,
     &ovVeldris::PbsMaterial::getMixAlbedoColorAndTexture, false},
    {"mix specular", &ovVeldris::PbsMaterial::setMixSpecularColorAndTexture,
     &ovVeldris::PbsMaterial::getMixSpecularColorAndTexture, false},
    {"mix emissive", &ovVeldris::PbsMaterial::setMixEmissiveColorAndTexture,
     &ovVeldris::PbsMaterial::getMixEmissiveColorAndTexture, false},
    {"mix metalness", &ovVeldris::PbsMaterial::setMixMetalnessFactorAndTexture,
     &ovVeldris::PbsMaterial::getMixMetalnessFactorAndTexture, false},
    {"mix roughness", &ovVeldris::PbsMaterial::setMixRoughnessGlossinessFactorAndTexture,
     &ovVeldris::PbsMaterial::getMixRoughnessGlossinessFactorAndTexture, false},
    {"mix environment", &ovVeldris::PbsMaterial::setMixEnvironmentColorAndTexture,
     &ovVeldris::PbsMaterial::getMixEnvironmentColorAndTexture, false},
    {"mix alpha", &ovVeldris::PbsMaterial::setMixAlphaFactorAndTexture,
     &ovVeldris::PbsMaterial::getMixAlphaFactorAndTexture, false},
    {"combine", &ovVeldris::PbsMaterial::setCombineLightAndEnvironment,
     &ovVeldris::PbsMaterial::getCombineLightAndEnvironment, false},
};

struct AttributeName {
    void (ovVeldris::PbsMaterial::*set)(ovMemory::StringView);
    ovMemory::String (ovVeldris::PbsMaterial::*get)() const;
    const char* byDefault;
};
inline const AttributeName ATTRIBUTES[] = {
    {&ovVeldris::PbsMaterial::setPositionAttributeName, &ovVeldris::PbsMaterial::getPositionAttributeName,
     "POSITION"},
    {&ovVeldris::PbsMaterial::setTexCoordAttributeName, &ovVeldris::PbsMaterial::getTexCoordAttributeName,
     "TEXCOORD"},
    {&ovVeldris::PbsMaterial::setNormalAttributeName, &ovVeldris::PbsMaterial::getNormalAttributeName,
     "NORMAL"},
    {&ovVeldris::PbsMaterial::setTangentAttributeName, &ovVeldris::PbsMaterial::getTangentAttributeName,
     "TANGENT"},
    {&ovVeldris::PbsMaterial::setBinormalAttributeName, &ovVeldris::PbsMaterial::getBinormalAttributeName,
     "BINORMAL"},
};
