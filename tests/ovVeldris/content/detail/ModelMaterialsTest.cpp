#include <cmath>
#include <gtest/gtest.h>
#include <ovVeldris/content/ModelTesting.h>

using namespace ovVeldris;
using ovGraphics::GLTF_ALPHA_MODE;
using ovGraphics::GLTF_WORKFLOW;
using ovGraphics::GltfMaterial;
using ovMaths::Vector;

namespace {

class ModelMaterialsTest : public ModelFixture {};

const Vector WHITE(1.0f, 1.0f, 1.0f);
constexpr Texel RED = {255, 0, 0, 255};
constexpr Texel GREY = {188, 188, 188, 255};

/// IEC 61966-2-1, 8 bits a component.
double linear(unsigned char encoded) {
    const double value = encoded / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

unsigned char encoded(double value) {
    const double result = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1.0 / 2.4) - 0.055;
    return static_cast<unsigned char>(std::lround(255.0 * result));
}

void expectNear(const Vector& actual, const Vector& expected, const char* what) {
    constexpr float DECIMALS = 1e-6f; // declarations keep six decimals
    EXPECT_NEAR(actual.x, expected.x, DECIMALS) << what;
    EXPECT_NEAR(actual.y, expected.y, DECIMALS) << what;
    EXPECT_NEAR(actual.z, expected.z, DECIMALS) << what;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, ModelMaterialsTest, bothLanguages(), languageName);

TEST_P(ModelMaterialsTest, numbersBecomeDiffuseColorAndReflectance) {
    struct Case {
        float metallic;
        Vector diffuse, reflectance;
    };
    // base * (1 - metallic), and 0.04 * (1 - metallic) + base * metallic
    const Case cases[] = {{0.0f, {0.8f, 0.4f, 0.2f}, {0.04f, 0.04f, 0.04f}},
                          {1.0f, {0.0f, 0.0f, 0.0f}, {0.8f, 0.4f, 0.2f}},
                          {0.25f, {0.6f, 0.3f, 0.15f}, {0.23f, 0.13f, 0.08f}}};
    for (const Case& current : cases) {
        GltfMaterial source;
        source.baseColor = {0.8f, 0.4f, 0.2f, 0.5f};
        source.metallic = current.metallic;
        source.roughness = 0.7f;
        const PbsMaterial& material = makeMaterial(source);
        expectNear(material.getAlbedoColor(), current.diffuse, "diffuse");
        expectNear(material.getSpecularColor(), current.reflectance, "reflectance");
        EXPECT_EQ(material.getPbsModel(), PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS);
        EXPECT_EQ(material.getMetalness(), 1.0f);
        EXPECT_EQ(material.getRoughnessGlossiness(), 0.7f);
        EXPECT_EQ(material.getAlpha(), 1.0f) << "an opaque surface";
        EXPECT_FALSE(material.getReconstructBinormals());
        EXPECT_EQ(material.getAlbedoTexture(), nullptr);
        EXPECT_EQ(material.getSpecularTexture(), nullptr);
    }
}

TEST_P(ModelMaterialsTest, mirrorsAreLeftALittleRough) {
    GltfMaterial source;
    source.roughness = 0.0f;
    EXPECT_EQ(makeMaterial(source).getRoughnessGlossiness(), 0.045f);
    source.workflow = GLTF_WORKFLOW::SPECULAR_GLOSSINESS;
    EXPECT_EQ(makeMaterial(source).getRoughnessGlossiness(), 0.955f);
}

TEST_P(ModelMaterialsTest, aPictureOfADielectricIsItsDiffuseColor) {
    GltfMaterial source;
    source.baseColorTexture = _scene.addTexture("wood", pngOf({RED, GREY}));
    source.baseColor = {1.0f, 0.5f, 1.0f, 1.0f};
    source.metallic = 0.0f;
    const PbsMaterial& material = makeMaterial(source);
    ASSERT_NE(material.getAlbedoTexture(), nullptr);
    EXPECT_EQ(material.getAlbedoTexture()->getName(), "wood");
    EXPECT_TRUE(material.getAlbedoTexture()->getGammaCorrected());
    EXPECT_TRUE(material.getMixAlbedoColorAndTexture());
    EXPECT_EQ(material.getAlbedoColor(), Vector(1.0f, 0.5f, 1.0f));
    EXPECT_EQ(material.getSpecularTexture(), nullptr);

    source.baseColor = {1.0f, 1.0f, 1.0f, 1.0f};
    EXPECT_FALSE(makeMaterial(source).getMixAlbedoColorAndTexture()) << "white changes nothing";
}

TEST_P(ModelMaterialsTest, aPictureOfAMetalIsItsReflectance) {
    GltfMaterial source;
    source.baseColorTexture = _scene.addTexture("gold", pngOf({RED, GREY}));
    // Metal all over: the blue of every texel is full.
    source.metallicRoughnessTexture =
        _scene.addTexture("surface", pngOf({{0, 51, 255, 255}, {0, 102, 255, 255}}));
    source.roughness = 0.5f;
    const PbsMaterial& material = makeMaterial(source);
    EXPECT_EQ(material.getAlbedoTexture(), nullptr);
    EXPECT_EQ(material.getAlbedoColor(), Vector());
    ASSERT_NE(material.getSpecularTexture(), nullptr);
    EXPECT_EQ(material.getSpecularTexture()->getName(), "gold");
    ASSERT_NE(material.getRoughnessGlossinessTexture(), nullptr);
    EXPECT_EQ(material.getRoughnessGlossinessTexture()->getName(), "surface");
    EXPECT_EQ(material.getRoughnessGlossinessTextureChannels(), ONE_CHANNEL_PACK::G);
    EXPECT_FALSE(material.getRoughnessGlossinessTexture()->getGammaCorrected());
    EXPECT_TRUE(material.getMixRoughnessGlossinessFactorAndTexture());
    EXPECT_EQ(material.getRoughnessGlossiness(), 0.5f);
}

TEST_P(ModelMaterialsTest, varyingMetalnessIsWorkedIntoPictures) {
    const Texel colors[] = {{200, 100, 50, 255}, {200, 100, 50, 128}};
    const Texel surfaces[] = {{0, 255, 255, 255}, {0, 255, 102, 255}}; // metal, and 0.4
    GltfMaterial source;
    source.name = "rust";
    source.baseColorTexture = _scene.addTexture("colour", pngOf({colors[0], colors[1]}));
    source.metallicRoughnessTexture = _scene.addTexture("surface", pngOf({surfaces[0], surfaces[1]}));
    source.metallic = 0.5f;
    const PbsMaterial& material = makeMaterial(source);
    ASSERT_TRUE(material.getAlbedoTexture() && material.getSpecularTexture());
    EXPECT_EQ(material.getAlbedoTexture()->getName(), "rust diffuse");
    EXPECT_EQ(material.getSpecularTexture()->getName(), "rust reflectance");
    for (unsigned int x = 0; x < 2; ++x) {
        const double metalness = 0.5 * surfaces[x][2] / 255.0;
        const Texel diffuse = texelOf(material.getAlbedoTexture(), x);
        const Texel reflectance = texelOf(material.getSpecularTexture(), x);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const double base = linear(colors[x][channel]);
            EXPECT_NEAR(diffuse[channel], encoded(base * (1.0 - metalness)), 1) << x << channel;
            EXPECT_NEAR(reflectance[channel], encoded(0.04 * (1.0 - metalness) + base * metalness), 1)
                << x << channel;
        }
        EXPECT_EQ(diffuse[3], colors[x][3]) << "alpha is kept";
    }
    EXPECT_FALSE(material.getMixAlbedoColorAndTexture());
    EXPECT_FALSE(material.getMixSpecularColorAndTexture());
}

TEST_P(ModelMaterialsTest, picturesOfOtherSizesAreStretched) {
    GltfMaterial source;
    source.metallicRoughnessTexture = _scene.addTexture(
        "surface", pngOf({{0, 0, 0, 255}, {0, 0, 0, 255}, {0, 0, 255, 255}, {0, 0, 255, 255}}));
    source.baseColorTexture = _scene.addTexture("colour", pngOf({GREY}));
    const PbsMaterial& material = makeMaterial(source);
    ASSERT_NE(material.getAlbedoTexture(), nullptr);
    EXPECT_EQ(material.getAlbedoTexture()->getWidth(), 4u);
    EXPECT_EQ(texelOf(material.getAlbedoTexture(), 0)[0], 188) << "no metal: all diffuse";
    EXPECT_EQ(texelOf(material.getAlbedoTexture(), 3)[0], 0);
    EXPECT_EQ(texelOf(material.getSpecularTexture(), 0)[0], encoded(0.04));
    EXPECT_EQ(texelOf(material.getSpecularTexture(), 3)[0], 188);
}

TEST_P(ModelMaterialsTest, glossinessIsTakenAsItIs) {
    GltfMaterial source;
    source.workflow = GLTF_WORKFLOW::SPECULAR_GLOSSINESS;
    source.baseColor = {0.5f, 0.25f, 1.0f, 1.0f};
    source.specular = {0.1f, 0.2f, 0.3f};
    source.glossiness = 0.75f;
    source.specularGlossinessTexture = _scene.addTexture("gloss", pngOf({GREY}));
    const PbsMaterial& material = makeMaterial(source);
    EXPECT_EQ(material.getPbsModel(), PBS_MODEL::SPECULAR_GLOSSINESS);
    EXPECT_EQ(material.getAlbedoColor(), Vector(0.5f, 0.25f, 1.0f));
    EXPECT_EQ(material.getSpecularColor(), Vector(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(material.getMetalness(), 1.0f);
    EXPECT_EQ(material.getSpecularTexture(), material.getRoughnessGlossinessTexture());
    EXPECT_EQ(material.getRoughnessGlossinessTextureChannels(), ONE_CHANNEL_PACK::A);
    EXPECT_TRUE(material.getMixSpecularColorAndTexture());
    EXPECT_TRUE(material.getMixRoughnessGlossinessFactorAndTexture());
    EXPECT_EQ(material.getRoughnessGlossiness(), 0.75f);
}

TEST_P(ModelMaterialsTest, alphaMeansWhatItsModeSays) {
    GltfMaterial source;
    source.metallic = 0.0f;
    source.baseColor = {1.0f, 1.0f, 1.0f, 0.5f};
    source.alphaCutoff = 0.25f;
    source.baseColorTexture = _scene.addTexture("leaf", pngOf({GREY}));
    EXPECT_EQ(makeMaterial(source).getAlphaTexture(), nullptr);
    EXPECT_EQ(_model->getMaterials()[0].alphaMode, GLTF_ALPHA_MODE::OPAQUE);

    source.alphaMode = GLTF_ALPHA_MODE::MASK;
    const PbsMaterial& masked = makeMaterial(source);
    EXPECT_EQ(masked.getAlphaTexture(), masked.getAlbedoTexture());
    EXPECT_EQ(masked.getAlphaTextureChannels(), ONE_CHANNEL_PACK::A);
    EXPECT_TRUE(masked.getMixAlphaFactorAndTexture());
    EXPECT_EQ(masked.getAlpha(), 0.5f);
    EXPECT_EQ(masked.getAlphaCutoff(), std::nextafter(0.25f, 0.0f))
        << "what equals the file's cut-off is kept";

    source.alphaCutoff = 1.5f;
    EXPECT_EQ(makeMaterial(source).getAlphaCutoff(), 1.0f) << "nothing is kept";

    source.alphaCutoff = 0.0f;
    EXPECT_EQ(makeMaterial(source).getAlphaTexture(), nullptr) << "everything is kept";

    source.alphaMode = GLTF_ALPHA_MODE::BLEND;
    const PbsMaterial& blended = makeMaterial(source);
    EXPECT_EQ(blended.getAlphaCutoff(), 0.00001f);
    EXPECT_EQ(blended.getAlpha(), 0.5f);

    source.baseColor.w = 1.0f;
    EXPECT_FALSE(makeMaterial(source).getMixAlphaFactorAndTexture()) << "nothing to multiply";
    source.baseColor.w = 0.5f;
    source.baseColorTexture = -1;
    const PbsMaterial& plain = makeMaterial(source);
    EXPECT_EQ(plain.getAlphaTexture(), nullptr);
    EXPECT_EQ(plain.getAlpha(), 0.5f);
    EXPECT_FALSE(plain.getMixAlphaFactorAndTexture());
}

TEST_P(ModelMaterialsTest, aMetalWithHolesReadsThemFromItsPicture) {
    GltfMaterial source;
    source.alphaMode = GLTF_ALPHA_MODE::MASK;
    source.baseColorTexture = _scene.addTexture("grille", pngOf({GREY}));
    const PbsMaterial& material = makeMaterial(source);
    EXPECT_EQ(material.getAlbedoTexture(), nullptr);
    EXPECT_EQ(material.getAlphaTexture(), material.getSpecularTexture());
    EXPECT_NE(material.getAlphaTexture(), nullptr);
}

TEST_P(ModelMaterialsTest, emissionIsAColorAndItsStrength) {
    GltfMaterial source;
    source.emissive = {4.0f, 2.0f, 1.0f};
    EXPECT_EQ(makeMaterial(source).getEmissiveColor(), Vector(4.0f, 2.0f, 1.0f));
    source.emissiveTexture = _scene.addTexture("lamp", pngOf({RED}));
    const PbsMaterial& material = makeMaterial(source);
    EXPECT_TRUE(material.getMixEmissiveColorAndTexture());
    EXPECT_TRUE(material.getEmissiveTexture()->getGammaCorrected());
    source.emissive = WHITE;
    EXPECT_FALSE(makeMaterial(source).getMixEmissiveColorAndTexture());
}

TEST_P(ModelMaterialsTest, unlitSurfacesGiveTheirColorOff) {
    GltfMaterial source;
    source.unlit = true;
    source.baseColor = {0.5f, 0.25f, 0.125f, 1.0f};
    source.baseColorTexture = _scene.addTexture("sign", pngOf({RED}));
    const PbsMaterial& material = makeMaterial(source);
    EXPECT_EQ(material.getEmissiveColor(), Vector(0.5f, 0.25f, 0.125f));
    ASSERT_NE(material.getEmissiveTexture(), nullptr);
    EXPECT_EQ(material.getEmissiveTexture()->getName(), "sign");
    EXPECT_EQ(material.getAlbedoTexture(), nullptr);
    EXPECT_EQ(material.getAlbedoColor(), Vector());
    EXPECT_EQ(material.getSpecularColor(), Vector());
    EXPECT_EQ(material.getRoughnessGlossiness(), 1.0f);
}

TEST_P(ModelMaterialsTest, reliefIsReadAsItIsOrAdjusted) {
    GltfMaterial source;
    source.normalTexture = _scene.addTexture("bumps", pngOf({{255, 128, 128, 255}, {128, 128, 255, 255}}));
    source.occlusionTexture = _scene.addTexture("corners", pngOf({{0, 9, 9, 255}, {102, 9, 9, 255}}));
    const PbsMaterial& plain = makeMaterial(source);
    EXPECT_EQ(plain.getNormalMapTexture()->getName(), "bumps");
    EXPECT_FALSE(plain.getNormalMapTexture()->getGammaCorrected());
    EXPECT_EQ(plain.getOcclusionTexture()->getName(), "corners");
    EXPECT_EQ(plain.getOcclusionTextureChannels(), ONE_CHANNEL_PACK::R);

    source.name = "flat";
    source.normalScale = 0.0f;
    source.occlusionStrength = 0.5f;
    const PbsMaterial& adjusted = makeMaterial(source);
    EXPECT_EQ(adjusted.getNormalMapTexture()->getName(), "flat normals");
    EXPECT_EQ(texelOf(adjusted.getNormalMapTexture(), 1), (Texel{128, 128, 255, 255})) << "straight up";
    EXPECT_EQ(adjusted.getOcclusionTexture()->getName(), "flat occlusion");
    EXPECT_EQ(texelOf(adjusted.getOcclusionTexture(), 0)[0], 128) << "1 + 0.5 * (0 - 1)";
    EXPECT_EQ(texelOf(adjusted.getOcclusionTexture(), 1)[0], 179) << "1 + 0.5 * (0.4 - 1) = 0.7";
}

TEST_P(ModelMaterialsTest, colorsKeepEveryBit) {
    GltfMaterial source;
    source.metallic = 0.0f;
    source.baseColor = {0.123456789f, 1.0f / 3.0f, 1e-7f, 1.0f};
    source.emissive = {1e-9f, 0.7654321f, 123.456789f};
    const PbsMaterial& material = makeMaterial(source);
    EXPECT_EQ(material.getAlbedoColor(), Vector(0.123456789f, 1.0f / 3.0f, 1e-7f));
    EXPECT_EQ(material.getEmissiveColor(), Vector(1e-9f, 0.7654321f, 123.456789f));
    EXPECT_EQ(material.getSpecularColor(), Vector(0.04f, 0.04f, 0.04f));
}
