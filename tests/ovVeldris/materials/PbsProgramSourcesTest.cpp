#include <ovVeldris/materials/PbsProgramSources.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/ProgramSourcesHolder.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/materials/PbsCombinations.h>

using namespace ovVeldris;
using ovGraphics::shading::Define;

namespace {

using Defines = ovMemory::Buffer<Define>;

/// How many options the programs that are compiled combine in every way; more take longer.
unsigned int getCoverStrength() {
    const char* const wanted = std::getenv("OV_COVER_STRENGTH");
    return wanted ? static_cast<unsigned int>(std::atoi(wanted)) : 2u;
}

class PbsProgramSourcesTest : public testing::Test {
protected:
    PbsProgramSourcesTest() {
        for (unsigned int i = 0; i < PBS_OPTION_TEXTURE_COUNT; ++i) {
            owned.push_back(ovGraphics::Texture::create(&graphics));
            textures.push_back(owned.back().get());
        }
    }

    ovGraphics::ProgramSourcesHolder fill() {
        ovGraphics::ProgramSourcesHolder sources;
        fillPbsProgramSources(parameters, sources);
        return sources;
    }

    void checkPixel(const Defines& expected) {
        packPbsTextures(parameters);
        EXPECT_EQ(fill().getPixel().defines, expected);
    }

    ovGraphics::System graphics;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> owned;
    ovMemory::Buffer<ovGraphics::Texture*> textures;
    PbsMaterialParameters parameters;
};

const Defines DEFAULT_VERTEX = {{"POSITION_SEMANTIC", "POSITION"},
                                {"TEXCOORD_SEMANTIC", "TEXCOORD"},
                                {"NORMAL_SEMANTIC", "NORMAL"},
                                {"TANGENT_SEMANTIC", "TANGENT"},
                                {"BINORMAL_SEMANTIC", "BINORMAL"}};

Defines operator+(Defines first, const Defines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

namespace ovGraphics::shading {
// Names what differs.
void PrintTo(const Define& define, std::ostream* out) {
    *out << define.name << "=" << define.value;
}
} // namespace ovGraphics::shading

TEST_F(PbsProgramSourcesTest, DefinesNothingMuchByDefault) {
    checkPixel({{"SPECULAR_METALNESS_ROUGHNESS", ""}});
    EXPECT_EQ(fill().getVertex().defines, DEFAULT_VERTEX + Defines({{"RECONSTRUCT_BINORMALS", ""}}));
    parameters.reconstructBinormals = false;
    EXPECT_EQ(fill().getVertex().defines, DEFAULT_VERTEX);
}

TEST_F(PbsProgramSourcesTest, NamesAttributes) {
    parameters.positionAttributeName = "P";
    parameters.texCoordAttributeName = "U";
    parameters.normalAttributeName = "N";
    parameters.tangentAttributeName = "T";
    parameters.binormalAttributeName = "B";
    EXPECT_EQ(fill().getVertex().defines, Defines({{"POSITION_SEMANTIC", "P"},
                                                   {"TEXCOORD_SEMANTIC", "U"},
                                                   {"NORMAL_SEMANTIC", "N"},
                                                   {"TANGENT_SEMANTIC", "T"},
                                                   {"BINORMAL_SEMANTIC", "B"},
                                                   {"RECONSTRUCT_BINORMALS", ""}}));
}

TEST_F(PbsProgramSourcesTest, DefinesEveryTextureByItsUnit) {
    parameters.albedoTexture = textures[0];
    parameters.albedoTextureChannels = THREE_CHANNEL_PACK::GRB;
    parameters.specularTexture = textures[1];
    parameters.emissiveTexture = textures[2];
    parameters.metalnessTexture = textures[3];
    parameters.roughnessGlossinessTexture = textures[4];
    parameters.roughnessGlossinessTextureChannel = ONE_CHANNEL_PACK::G;
    parameters.alphaTexture = textures[5];
    parameters.alphaTextureChannel = static_cast<ONE_CHANNEL_PACK>(4);
    parameters.normalMapTexture = textures[6];
    parameters.occlusionTexture = textures[7];
    parameters.occlusionTextureChannel = ONE_CHANNEL_PACK::A;
    Defines expected;
    for (int unit = 0; unit < 8; ++unit)
        expected.push_back({"TEXTURE_" + std::to_string(unit), ""});
    // Roughness takes a unit before metalness, and the normal map before occlusion.
    checkPixel(expected + Defines({{"ALBEDO_TEXTURE", "texture0Data"},
                                   {"ALBEDO_CHANNELS", "grb"},
                                   {"SPECULAR_TEXTURE", "texture1Data"},
                                   {"SPECULAR_CHANNELS", "rgb"},
                                   {"EMISSIVE_TEXTURE", "texture2Data"},
                                   {"EMISSIVE_CHANNELS", "rgb"},
                                   {"METALNESS_TEXTURE", "texture4Data"},
                                   {"METALNESS_CHANNEL", "r"},
                                   {"ROUGHNESS_GLOSSINESS_TEXTURE", "texture3Data"},
                                   {"ROUGHNESS_GLOSSINESS_CHANNEL", "g"},
                                   {"ALPHA_TEXTURE", "texture5Data"},
                                   {"ALPHA_CHANNEL", "unknown"},
                                   {"NORMAL_MAP_TEXTURE", "texture6Data"},
                                   {"NORMAL_MAP_CHANNELS", "rgb"},
                                   {"OCCLUSION_TEXTURE", "texture7Data"},
                                   {"OCCLUSION_CHANNEL", "a"},
                                   {"USE_UV", ""},
                                   {"SPECULAR_METALNESS_ROUGHNESS", ""}}));
    EXPECT_EQ(fill().getVertex().defines,
              DEFAULT_VERTEX +
                  Defines({{"NORMAL_MAP_TEXTURE", ""}, {"USE_UV", ""}, {"RECONSTRUCT_BINORMALS", ""}}));
}

TEST_F(PbsProgramSourcesTest, PropertiesShareATexture) {
    parameters.albedoTexture = textures[0];
    parameters.metalnessTexture = textures[0];
    parameters.metalnessTextureChannel = ONE_CHANNEL_PACK::A;
    checkPixel({{"TEXTURE_0", ""},
                {"ALBEDO_TEXTURE", "texture0Data"},
                {"ALBEDO_CHANNELS", "rgb"},
                {"METALNESS_TEXTURE", "texture0Data"},
                {"METALNESS_CHANNEL", "a"},
                {"USE_UV", ""},
                {"SPECULAR_METALNESS_ROUGHNESS", ""}});
}

TEST_F(PbsProgramSourcesTest, DefinesMaps) {
    parameters.environmentTexture = textures[0];
    parameters.environmentTextureChannels = THREE_CHANNEL_PACK::ABG;
    parameters.irradianceTexture = textures[1];
    const auto expected = [](bool prefiltered, bool environmentIsCube, bool irradianceIsCube) {
        Defines defines = {{"ENV_TEXTURE", ""}, {"ENV_CHANNELS", "abg"}, {"ENV_TEX_SLOT", "9"}};
        if (prefiltered)
            defines.push_back({"ENV_PREFILTERED", ""});
        if (environmentIsCube)
            defines.push_back({"ENV_CUBE_MAP", ""});
        defines = defines + Defines({{"IRRADIANCE_TEXTURE", ""},
                                     {"IRRADIANCE_CHANNELS", "rgb"},
                                     {"IRRADIANCE_TEX_SLOT", "10"}});
        if (irradianceIsCube)
            defines.push_back({"IRRADIANCE_CUBE_MAP", ""});
        if (!environmentIsCube || !irradianceIsCube)
            defines.push_back({"USE_2D_MAP", ""});
        defines.push_back({"SPECULAR_METALNESS_ROUGHNESS", ""});
        return defines;
    };
    // Not loaded, maps are what the settings say, whatever type they have.
    textures[0]->setTexType(ovGraphics::TEXTURE_TYPE::CUBE);
    for (const bool environmentIsCube : {true, false})
        for (const bool irradianceIsCube : {true, false}) {
            parameters.environmentPrefiltered = environmentIsCube;
            parameters.environmentTextureIsCubeByDefault = environmentIsCube;
            parameters.irradianceTextureIsCubeByDefault = irradianceIsCube;
            checkPixel(expected(environmentIsCube, environmentIsCube, irradianceIsCube));
        }
    EXPECT_EQ(fill().getVertex().defines, DEFAULT_VERTEX + Defines({{"RECONSTRUCT_BINORMALS", ""}}))
        << "maps are read by direction";
}

TEST_F(PbsProgramSourcesTest, DefinesShadowsAndSwitches) {
    parameters.shadowMapParameters = {SHADOW_MAP_PCF::PCF_4_TAP, 0.0f, true};
    parameters.pbsModel = PBS_MODEL::SPECULAR_GLOSSINESS;
    checkPixel({{"SPECULAR_GLOSSINESS", ""}}); // without a map its settings select nothing
    parameters.shadowMapTexture = textures[0];
    parameters.mixAlbedoColorAndTexture = parameters.mixSpecularColorAndTexture = true;
    parameters.mixEmissiveColorAndTexture = parameters.mixMetalnessFactorAndTexture = true;
    parameters.mixRoughnessGlossinessFactorAndTexture = parameters.mixEnvironmentColorAndTexture = true;
    parameters.mixAlphaFactorAndTexture = parameters.combineLightAndEnvironment = true;
    checkPixel({{"SHADOW_TEXTURE", ""},
                {"SHADOW_TEXTURE_SLOT", "8"},
                {"SPECULAR_GLOSSINESS", ""},
                {"OV_SHADOW_MAP_METHOD_PCF_4_TAP", ""},
                {"OV_SHADOW_MAP_METHOD_BIAS", "0.0"},
                {"OV_SHADOW_MAP_METHOD_DEBUG_OOB", ""},
                {"MIX_ALBEDO_COLOR_TEXTURE", ""},
                {"MIX_SPECULAR_COLOR_TEXTURE", ""},
                {"MIX_EMISSIVE_COLOR_TEXTURE", ""},
                {"MIX_METALNESS_FACTOR_TEXTURE", ""},
                {"MIX_ROUGHNESS_GLOSSINESS_FACTOR_TEXTURE", ""},
                {"MIX_ENVIRONMENT_COLOR_TEXTURE", ""},
                {"MIX_ALPHA_FACTOR_TEXTURE", ""},
                {"COMBINE_LIGHT_AND_ENVIRONMENT", ""}});
    EXPECT_EQ(fill().getVertex().defines,
              DEFAULT_VERTEX + Defines({{"SHADOW_TEXTURE", ""}, {"RECONSTRUCT_BINORMALS", ""}}));
}

TEST_F(PbsProgramSourcesTest, EveryOtherModelIsMetalness) {
    parameters.pbsModel = static_cast<PBS_MODEL>(2);
    checkPixel({{"SPECULAR_METALNESS_ROUGHNESS", ""}});
}

TEST_F(PbsProgramSourcesTest, ACoverHoldsEveryPair) {
    const auto options = makePbsOptions(textures);
    const auto choices = makeCover(options, 2);
    for (std::size_t i = 0; i < options.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            std::set<std::pair<unsigned int, unsigned int>> met;
            for (const PbsChoice& choice : choices)
                met.emplace(choice[i], choice[j]);
            EXPECT_EQ(met.size(), options[i].valueCount * options[j].valueCount) << i << " " << j;
        }
}

TEST_F(PbsProgramSourcesTest, EveryCombinationCompilesInBothLanguagesWithoutAWarning) {
    const auto options = makePbsOptions(textures);
    const auto choices = makeCover(options, getCoverStrength());
    RecordProperty("combinations", static_cast<int>(choices.size()));
    for (const PbsChoice& choice : choices) {
        PbsMaterialParameters chosen;
        for (std::size_t i = 0; i < options.size(); ++i)
            options[i].apply(chosen, choice[i]);
        packPbsTextures(chosen);
        ovGraphics::ProgramSourcesHolder sources;
        fillPbsProgramSources(chosen, sources);
        for (const auto language : {ovGraphics::SHADER_LANGUAGE::GLSL, ovGraphics::SHADER_LANGUAGE::HLSL}) {
            const auto result = ovGraphics::shading::compile(
                {"PBS", language, true, sources.getVertex(), sources.getPixel()});
            ASSERT_TRUE(result) << describe(options, choice) << "\n" << result.error;
            EXPECT_EQ(result.warning, "") << describe(options, choice);
        }
    }
}
