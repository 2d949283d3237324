#include <ovVeldris/materials/PbsParametersTree.h>

#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovVeldris/materials/PbsMaterialParameters.h>

// Its names stay its own where the folder is compiled as one.
namespace pbsParametersTreeTest {

using namespace ovVeldris;
using ovExport::Node;

namespace {

class PbsParametersTreeTest : public testing::Test {
protected:
    ovMemory::String exportText() const {
        const ovMemory::UniquePtr<Node> root = Node::create();
        exportPbsParameters(parameters, *root);
        ovExport::JsonExporter exporter;
        exporter.setPretty(false);
        return exporter.exportTreeIntoString(root.get());
    }

    void importText(ovMemory::StringView text) {
        const auto result = ovExport::JsonExporter().importIntoTree(text);
        ASSERT_TRUE(result) << text;
        importPbsParameters(parameters, *result._tree, graphics.getTextureManager());
    }

    ovGraphics::Texture* texture(ovMemory::StringView name) {
        return graphics.getTextureManager()->createOrRetrieve(name);
    }

    ovGraphics::System graphics;
    PbsMaterialParameters parameters;
};

const ovMemory::String ZERO = R"j("Vec(0, 0, 0, 0)")j";
const ovMemory::String HALF = R"j("Vec(0.5, 0.5, 0.5, 0)")j";
const ovMemory::String LIGHT = R"j({"lightDirection":"Vec(1, -1, 1, 0)",)j"
                               R"j("lightColor":"Vec(1, 1, 1, 0)",)j";
const ovMemory::String COLORS = R"j("albedoColor":)j" + ZERO + R"j(,"specularColor":)j" + HALF +
                                R"j(,"emissiveColor":)j" + ZERO + R"j(,"environmentColor":)j" + ZERO + ",";
const ovMemory::String FACTORS = R"j("metalnessValue":0.5,"roughnessGlossinessValue":0.5,"alphaValue":1.0)j";

} // namespace

TEST_F(PbsParametersTreeTest, WritesTheDefaults) {
    EXPECT_EQ(exportText(), LIGHT + COLORS + FACTORS + "}");
}

TEST_F(PbsParametersTreeTest, WritesTexturesInsteadOfColorsAndFactors) {
    parameters.albedoTexture = texture("a");
    parameters.albedoTextureChannels = THREE_CHANNEL_PACK::BGR;
    parameters.specularTexture = texture("b");
    parameters.emissiveTexture = texture("c");
    parameters.environmentTexture = texture("d");
    parameters.metalnessTexture = texture("e");
    parameters.metalnessTextureChannel = ONE_CHANNEL_PACK::B;
    parameters.roughnessGlossinessTexture = texture("f");
    parameters.alphaTexture = texture("g");
    parameters.alphaCutoff = 0.25f;
    parameters.normalMapTexture = texture("h");
    parameters.irradianceTexture = texture("i");
    parameters.irradianceTextureChannels = static_cast<THREE_CHANNEL_PACK>(24);
    EXPECT_EQ(exportText(), LIGHT + R"j("albedoTexture":{"name":"a","packing":"bgr"},)j"
                                    R"j("specularTexture":{"name":"b","packing":"rgb"},)j"
                                    R"j("emissiveTexture":{"name":"c","packing":"rgb"},)j"
                                    R"j("environmentTexture":{"name":"d","packing":"rgb"},)j"
                                    R"j("metalnessTexture":{"name":"e","packing":"b"},)j"
                                    R"j("roughnessGlossinessTexture":{"name":"f","packing":"r"},)j"
                                    R"j("alphaTexture":{"name":"g","packing":"r"},)j"
                                    R"j("alphaCutoff":0.25,)j"
                                    R"j("normalMap":{"name":"h","packing":"rgb"},)j"
                                    R"j("irradianceTexture":{"name":"i","packing":"unknown"}})j");
}

TEST_F(PbsParametersTreeTest, WritesCubesByDefaultOnlyWhenTheyAreNot) {
    parameters.environmentTextureIsCubeByDefault = false;
    EXPECT_EQ(exportText(), LIGHT + COLORS + FACTORS + R"j(,"environmentTextureIsCubeByDefault":false})j");
    parameters.irradianceTextureIsCubeByDefault = false;
    EXPECT_EQ(exportText(), LIGHT + COLORS + FACTORS +
                                R"j(,"environmentTextureIsCubeByDefault":false)j"
                                R"j(,"irradianceTextureIsCubeByDefault":false})j");
    parameters.environmentTextureIsCubeByDefault = parameters.irradianceTextureIsCubeByDefault = true;
    EXPECT_EQ(exportText(), LIGHT + COLORS + FACTORS + "}");
}

TEST_F(PbsParametersTreeTest, LeavesOutWhatIsNotKept) {
    const ovMemory::String defaults = exportText();
    parameters.occlusionTexture = parameters.shadowMapTexture = texture("o");
    parameters.shadowMapParameters = {SHADOW_MAP_PCF::NONE, 1.0f, true};
    parameters.pbsModel = PBS_MODEL::SPECULAR_GLOSSINESS;
    parameters.environmentPrefiltered = true;
    parameters.reconstructBinormals = false;
    parameters.mixAlbedoColorAndTexture = parameters.combineLightAndEnvironment = true;
    parameters.positionAttributeName = "P";
    parameters.alphaCutoff = 0.5f; // goes with the alpha texture
    EXPECT_EQ(exportText(), defaults);
}

TEST_F(PbsParametersTreeTest, ReadsWhatItWrites) {
    parameters.lightDirection = {1.0f, 2.0f, 3.0f, 4.0f};
    parameters.lightColor = {1.0f / 3.0f, 1e-7f, 123456.789f};
    parameters.albedoTexture = texture("a");
    parameters.albedoTextureChannels = THREE_CHANNEL_PACK::ABR;
    parameters.emissiveColor = {7.0f, 8.0f, 9.0f};
    parameters.metalness = 0.1f;
    parameters.alphaTexture = texture("g");
    parameters.alphaTextureChannel = ONE_CHANNEL_PACK::A;
    parameters.alphaCutoff = 0.3f;
    parameters.normalMapTexture = texture("h");
    parameters.normalMapTextureChannels = THREE_CHANNEL_PACK::GBA;
    parameters.irradianceTexture = texture("i");
    parameters.irradianceTextureIsCubeByDefault = false;
    const ovMemory::String written = exportText();
    parameters = {};
    importText(written);
    EXPECT_EQ(exportText(), written);
    EXPECT_EQ(parameters.albedoTexture.get(), texture("a"));
    EXPECT_EQ(parameters.lightDirection.w, 4.0f);
    EXPECT_EQ(parameters.lightColor, ovMaths::Vector(1.0f / 3.0f, 1e-7f, 123456.789f));
    EXPECT_EQ(parameters.metalness, 0.1f);
    EXPECT_EQ(parameters.alphaCutoff, 0.3f);
}

TEST_F(PbsParametersTreeTest, ReadsVectorsOfSixDecimals) {
    importText(R"j({"lightColor":"Vec(0.333333, 0.000000, 2.500000, 0.000000)"})j");
    EXPECT_EQ(parameters.lightColor, ovMaths::Vector(0.333333f, 0.0f, 2.5f));
}

TEST_F(PbsParametersTreeTest, EveryMemberIsOptionalAndOfItsKind) {
    const ovMemory::String before = exportText();
    const char* const texts[] = {
        "{}",
        R"j({"lightDirection":1,"lightColor":{},"albedoColor":true,"metalnessValue":"0.1","alphaValue":null})j",
        R"j({"lightDirection":"north","lightColor":"Vec(1, 2, 3)"})j",
        R"j({"albedoTexture":"a","metalnessTexture":[],"normalMap":3,"irradianceTexture":null})j",
        R"j({"albedoTexture":{},"alphaTexture":{"name":1,"packing":2},"normalMap":{"name":[]}})j",
        R"j({"environmentTextureIsCubeByDefault":0,"irradianceTextureIsCubeByDefault":"false"})j",
        R"j({"alphaCutoff":"1"})j",
        "[]",
        "null",
    };
    for (const char* const text : texts) {
        importText(text);
        EXPECT_EQ(exportText(), before) << text;
    }
    EXPECT_EQ(graphics.getTextureManager()->getCount(), 0u);
}

TEST_F(PbsParametersTreeTest, ATextureObjectHidesTheColorAndTheFactor) {
    parameters.albedoColor = {1.0f, 2.0f, 3.0f};
    parameters.metalness = 0.25f;
    const ovMemory::String color = R"j("albedoColor":"Vec(9, 9, 9, 9)","metalnessValue":9)j";
    importText(R"j({"albedoTexture":{},"metalnessTexture":{},)j" + color + "}");
    EXPECT_EQ(parameters.albedoColor, ovMaths::Vector(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(parameters.metalness, 0.25f);
    importText(R"j({"albedoTexture":"a","metalnessTexture":1,)j" + color + "}");
    EXPECT_EQ(parameters.albedoColor, ovMaths::Vector(9.0f, 9.0f, 9.0f, 9.0f));
    EXPECT_EQ(parameters.metalness, 9.0f);
}

TEST_F(PbsParametersTreeTest, UnknownPackingsFallBack) {
    importText(R"j({"metalnessTexture":{"packing":"x"},"alphaTexture":{"packing":"R"},)j"
               R"j("roughnessGlossinessTexture":{"packing":"g"},"albedoTexture":{"packing":"ABR"},)j"
               R"j("normalMap":{"packing":"bgr"},"irradianceTexture":{"packing":"abg"}})j");
    EXPECT_EQ(parameters.metalnessTextureChannel, ONE_CHANNEL_PACK::A);
    EXPECT_EQ(parameters.alphaTextureChannel, ONE_CHANNEL_PACK::A);
    EXPECT_EQ(parameters.roughnessGlossinessTextureChannel, ONE_CHANNEL_PACK::G);
    EXPECT_EQ(parameters.albedoTextureChannels, THREE_CHANNEL_PACK::RGB);
    EXPECT_EQ(parameters.normalMapTextureChannels, THREE_CHANNEL_PACK::BGR);
    EXPECT_EQ(parameters.irradianceTextureChannels, THREE_CHANNEL_PACK::ABG);
    EXPECT_EQ(parameters.albedoTexture.get(), nullptr);
}

TEST_F(PbsParametersTreeTest, TakesNumbersOfEveryWidthAndTheCutoffAlone) {
    importText(
        R"j({"metalnessValue":1,"roughnessGlossinessValue":0.125,"alphaValue":-2,"alphaCutoff":3e9})j");
    EXPECT_EQ(parameters.metalness, 1.0f);
    EXPECT_EQ(parameters.roughnessGlossiness, 0.125f);
    EXPECT_EQ(parameters.alpha, -2.0f);
    EXPECT_EQ(parameters.alphaCutoff, 3e9f);
}

TEST_F(PbsParametersTreeTest, CreatesTexturesThatAreNotThereYet) {
    importText(R"j({"albedoTexture":{"name":"new"},"emissiveTexture":{"name":"new","packing":"gbr"}})j");
    ASSERT_EQ(graphics.getTextureManager()->getCount(), 1u);
    EXPECT_EQ(parameters.albedoTexture.get(), graphics.getTextureManager()->get("new"));
    EXPECT_EQ(parameters.emissiveTexture.get(), parameters.albedoTexture.get());
    EXPECT_TRUE(parameters.albedoTexture.get()->isUnloaded());
    EXPECT_EQ(parameters.albedoTextureChannels, THREE_CHANNEL_PACK::RGB);
    EXPECT_EQ(parameters.emissiveTextureChannels, THREE_CHANNEL_PACK::GBR);
}

TEST_F(PbsParametersTreeTest, WithoutATextureManagerTexturesStay) {
    const auto result = ovExport::JsonExporter().importIntoTree(
        R"j({"albedoTexture":{"name":"a","packing":"bgr"},"metalnessValue":0.75})j");
    importPbsParameters(parameters, *result._tree, nullptr);
    EXPECT_FALSE(parameters.albedoTexture.isNamed());
    EXPECT_EQ(parameters.albedoTextureChannels, THREE_CHANNEL_PACK::BGR);
    EXPECT_EQ(parameters.metalness, 0.75f);
}

} // namespace pbsParametersTreeTest
