#include <ovVeldris/materials/PbsShaderBindings.h>

#include <map>
#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/PbsCombinations.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/materials/PbsProgramSources.h>

using namespace ovVeldris;
using ovGraphics::Sampler;

namespace {

constexpr ovMemory::StringView DEFAULT_SAMPLER = "ORVANE_DEFAULT_SAMPLER";
constexpr ovMemory::StringView SHADOW_SAMPLER = "ORVANE_DEFAULT_SAMPLER_COMPARISON_SHADOWS";

class PbsShaderBindingsTest : public EffectFixture {
protected:
    Sampler* sampler(ovMemory::StringView name) { return getGraphics().getSamplerManager()->get(name); }

    ovMemory::UniquePtr<ovGraphics::Shader> bind(PbsMaterialParameters& parameters) {
        auto shader = ovGraphics::Shader::create(&getGraphics());
        bindPbsShader(*shader, parameters, getGraphics());
        return shader;
    }

    /// Registers of a buffer that the shader declares.
    static unsigned int countRegisters(const ovGraphics::Shader& shader, unsigned int index) {
        const ovGraphics::ConstantBuffer* const buffer = shader.getConstantBuffer(index, 0);
        unsigned int count = 0;
        for (unsigned int i = 0; i < buffer->getPassMemorySlotCount(); ++i)
            count += buffer->getPassMemorySlot(i)->getRegisterCount();
        return count;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsShaderBindingsTest, bothLanguages(), languageName);

TEST_P(PbsShaderBindingsTest, BindsUnitsWithTheirSamplers) {
    const auto makeOne = [&] { return makeTexture(FloatPicture(1, 1)); };
    const auto first = makeOne();
    const auto second = makeOne();
    const auto shadow = makeOne();
    const auto environment = makeOne();
    const auto irradiance = makeOne();
    PbsMaterialParameters parameters;
    parameters.albedoTexture = parameters.packedTextures[0] = first.get();
    parameters.occlusionTexture = parameters.packedTextures[1] = second.get();
    parameters.shadowMapTexture = shadow.get();
    parameters.environmentTexture = environment.get();
    parameters.irradianceTexture = irradiance.get();
    const auto shader = bind(parameters);
    ASSERT_NE(sampler(DEFAULT_SAMPLER), nullptr);
    const std::map<unsigned int, std::pair<ovGraphics::Texture*, Sampler*>> units = {
        {0, {first.get(), sampler(DEFAULT_SAMPLER)}},
        {1, {second.get(), sampler(DEFAULT_SAMPLER)}},
        {8, {shadow.get(), sampler(SHADOW_SAMPLER)}},
        {9, {environment.get(), sampler(DEFAULT_SAMPLER)}},
        {10, {irradiance.get(), sampler(DEFAULT_SAMPLER)}},
    };
    for (unsigned int unit = 0; unit < 12; ++unit) {
        const auto bound = units.find(unit);
        EXPECT_EQ(shader->getTexture(unit, 0), bound == units.end() ? nullptr : bound->second.first) << unit;
        EXPECT_EQ(shader->getSampler(unit, 0), bound == units.end() ? nullptr : bound->second.second) << unit;
    }
}

TEST_P(PbsShaderBindingsTest, BindsNothingWithoutTextures) {
    PbsMaterialParameters parameters;
    const auto shader = bind(parameters);
    for (unsigned int unit = 0; unit < 12; ++unit)
        EXPECT_EQ(shader->getSampler(unit, 0), nullptr) << unit;
    EXPECT_EQ(countRegisters(*shader, 0), 9u) << "two matrices and the camera's position";
    EXPECT_EQ(countRegisters(*shader, 1), 9u);
}

TEST_P(PbsShaderBindingsTest, MakesTheShadowSamplerOnFirstUse) {
    getGraphics().getSamplerManager()->erase(SHADOW_SAMPLER);
    const auto texture = makeTexture(FloatPicture(1, 1));
    PbsMaterialParameters parameters;
    bind(parameters);
    EXPECT_EQ(sampler(SHADOW_SAMPLER), nullptr);
    parameters.shadowMapTexture = texture.get();
    bind(parameters);
    Sampler* const made = sampler(SHADOW_SAMPLER);
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->getHidden());
    EXPECT_FALSE(made->isUnloaded());
    const ovGraphics::device::SamplerDesc& desc = made->getDesc();
    EXPECT_EQ(unsigned(desc.filter), 149u);
    EXPECT_EQ(unsigned(desc.addressU), 4u);
    EXPECT_EQ(unsigned(desc.addressV), 4u);
    EXPECT_EQ(desc.borderColor, (std::array{1.0f, 1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(unsigned(desc.comparison), 4u);
    made->setAddressU(ovGraphics::TEXTURE_ADDRESS::CLAMP);
    bind(parameters);
    EXPECT_EQ(sampler(SHADOW_SAMPLER), made);
    EXPECT_EQ(unsigned(desc.addressU), 3u) << "the host's change stays";
    EXPECT_FALSE(made->isUnloaded());
    getGraphics().getSamplerManager()->erase(SHADOW_SAMPLER);
}

TEST_P(PbsShaderBindingsTest, ReadsWithoutFilterWhenTheDefaultSamplerIsGone) {
    System own;
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    ovGraphics::System& graphics = *own.getGraphicsEngine()->getGraphicsSystem();
    graphics.getSamplerManager()->erase(DEFAULT_SAMPLER);
    const auto texture = ovGraphics::Texture::create(&graphics);
    PbsMaterial material(&own);
    material.setAlbedoTexture(texture.get(), THREE_CHANNEL_PACK::RGB);
    EXPECT_TRUE(material.load());
    EXPECT_EQ(material.getShader()->getTexture(0, 0), texture.get());
    EXPECT_EQ(material.getShader()->getSampler(0, 0), nullptr);
    EXPECT_EQ(graphics.getSamplerManager()->get(DEFAULT_SAMPLER), nullptr) << "it is looked up, not made";
}

// The text declares the constants, and the bindings fill them: two descriptions of one layout.
TEST_P(PbsShaderBindingsTest, FillsExactlyTheConstantsThatTheTextDeclares) {
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> owned;
    ovMemory::Buffer<ovGraphics::Texture*> textures;
    for (unsigned int i = 0; i < PBS_OPTION_TEXTURE_COUNT; ++i) {
        owned.push_back(ovGraphics::Texture::create(&getGraphics()));
        textures.push_back(owned.back().get());
    }
    const auto options = makePbsOptions(textures);
    for (const PbsChoice& choice : makeCover(options, 2)) {
        PbsMaterialParameters parameters;
        for (std::size_t i = 0; i < options.size(); ++i)
            options[i].apply(parameters, choice[i]);
        packPbsTextures(parameters);
        ovGraphics::ProgramSourcesHolder sources;
        fillPbsProgramSources(parameters, sources);
        const auto compiled = ovGraphics::shading::compile(
            {"PBS", getLanguage(), true, sources.getVertex(), sources.getPixel()});
        ASSERT_TRUE(compiled) << compiled.error;
        const auto shader = bind(parameters);
        ASSERT_EQ(compiled.program->constantBuffers.size(), 2u);
        for (const auto& buffer : compiled.program->constantBuffers)
            EXPECT_EQ(countRegisters(*shader, buffer.slot) * 16, buffer.size) << describe(options, choice);

        const auto constantOf = [&](auto field) {
            return parameters.constants[getPbsRow(getPbsProperty(field))];
        };
        const std::map<ovMemory::String, unsigned int> places = {
            {"lightDir", 0},
            {"lightCol", 1},
            {"albedoCol", constantOf(&PbsSettings::albedoColor).value},
            {"specularCol", constantOf(&PbsSettings::specularColor).value},
            {"emissiveCol", constantOf(&PbsSettings::emissiveColor).value},
            {"envTexInfo", constantOf(&PbsSettings::environmentColor).textureSize},
            {"environmentCol", constantOf(&PbsSettings::environmentColor).value},
            {"metalnessVal", constantOf(&PbsSettings::metalness).value},
            {"roughnessVal", constantOf(&PbsSettings::roughnessGlossiness).value},
            {"alphaVal", constantOf(&PbsSettings::alpha).value},
            {"shadowMapSize", constantOf(&PbsSettings::shadowMapTexture).textureSize},
            {"shadowLightView", parameters.shadowViewMatrixConstant},
            {"shadowLightProjection", parameters.shadowProjectionMatrixConstant},
        };
        const auto& members = compiled.program->constantBuffers[1].members;
        for (unsigned int i = 0; i < members.size(); ++i)
            EXPECT_EQ(places.at(members[i].name), i) << members[i].name << " " << describe(options, choice);
    }
}
