// Materials of many models, written to a file and read back.
#include <veldris/materials/MaterialFile.h>

#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/gltf/GltfBuilder.h>
#include <ovGraphics/gltf/GltfEncoder.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <random>
#include <set>
#include <support/TemporaryFolder.h>
#include <tuple>
#include <veldris/SessionTesting.h>
#include <veldris/materials/DeclarationCheck.h>
#include <veldris/materials/MaterialDescription.h>
#include <veldris/scene/ModelLight.h>

using namespace veldris;
using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::PbsMaterial;

namespace {

/// One feature of the reader: members of a material's object, each with a comma before it, or nothing.
using Feature = Buffer<String>;
/// Which choice of each feature a model makes.
using Choices = Buffer<std::size_t>;

// Numbers that six decimals cannot hold, zeros, ones, and the ends of what the format allows.
const Feature FEATURES[] = {
    // The members of the description that the material has: of metals or of gloss.
    {"", R"("baseColorFactor": [0.333333343, 0.123456789, 0.0000001, 0.7654321])",
     R"("baseColorFactor": [1e-30, 0, 1, 0.1])"},
    {"", R"("baseColorTexture": {"index": 0})", R"("baseColorTexture": {"index": 1, "texCoord": 0})"},
    {"", R"("metallicFactor": 0)", R"("metallicFactor": 0.31415927)"},
    {"", R"("roughnessFactor": 0)", R"("roughnessFactor": 0.61803399)"},
    {"", R"("metallicRoughnessTexture": {"index": 0})", R"("metallicRoughnessTexture": {"index": 1})"},
    // Members of the material.
    {"", R"("name": "")", R"("name": "twice")", "\"name\": \"\\\"\\u00e9\\n\\u2603\""},
    {"", R"("normalTexture": {"index": 0})", R"("normalTexture": {"index": 1, "scale": 0.7071})"},
    {"", R"("occlusionTexture": {"index": 0})", R"("occlusionTexture": {"index": 1, "strength": 0.3})"},
    {"", R"("emissiveFactor": [0.1, 0.0000003, 1])", R"("emissiveFactor": [1, 1, 1])"},
    {"", R"("emissiveTexture": {"index": 0})"},
    {"", R"("alphaMode": "MASK")", R"("alphaMode": "MASK", "alphaCutoff": 0)",
     R"("alphaMode": "MASK", "alphaCutoff": 1)", R"("alphaMode": "MASK", "alphaCutoff": 1.5)",
     R"("alphaMode": "MASK", "alphaCutoff": 1e-45)", R"("alphaMode": "BLEND")"},
    {"", R"("doubleSided": true)"},
    // Extensions.
    {"", R"("KHR_materials_unlit": {})"},
    {"", R"("KHR_materials_emissive_strength": {"emissiveStrength": 17.3})",
     R"("KHR_materials_emissive_strength": {"emissiveStrength": 3e38})"},
    {"",
     R"("KHR_materials_pbrSpecularGlossiness": {"diffuseFactor": [0.2, 0.3, 0.7, 0.9],
         "specularFactor": [0.0400001, 1, 0.6], "glossinessFactor": 0.123456789})",
     R"("KHR_materials_pbrSpecularGlossiness": {"diffuseTexture": {"index": 0},
         "specularGlossinessTexture": {"index": 1}})"},
};
constexpr std::size_t FEATURE_COUNT = std::size(FEATURES);
constexpr std::size_t FIRST_OF_MATERIAL = 5;
constexpr std::size_t FIRST_OF_EXTENSIONS = 12;

String joined(const Choices& choices, std::size_t first, std::size_t last) {
    String members;
    for (std::size_t i = first; i < last; ++i) {
        const String& member = FEATURES[i][choices[i]];
        members += (members.empty() || member.empty() ? "" : ", ") + member;
    }
    return members;
}

String materialOf(const Choices& choices) {
    const String own = joined(choices, FIRST_OF_MATERIAL, FIRST_OF_EXTENSIONS);
    return R"({"pbrMetallicRoughness": {)" + joined(choices, 0, FIRST_OF_MATERIAL) + "}" +
           (own.empty() ? "" : ", ") + own + R"(, "extensions": {)" +
           joined(choices, FIRST_OF_EXTENSIONS, FEATURE_COUNT) + "}}";
}

/// Rows of choices, such that any two choices of two features come together in some row.
Buffer<Choices> makePairwise() {
    using Pair = std::tuple<std::size_t, std::size_t, std::size_t, std::size_t>;
    std::set<Pair> missing;
    for (std::size_t i = 0; i < FEATURE_COUNT; ++i)
        for (std::size_t j = i + 1; j < FEATURE_COUNT; ++j)
            for (std::size_t a = 0; a < FEATURES[i].size(); ++a)
                for (std::size_t b = 0; b < FEATURES[j].size(); ++b)
                    missing.insert({i, j, a, b});
    std::mt19937 random(1);
    Buffer<Choices> rows;
    while (!missing.empty()) {
        // A random row around the first missing pair, so that each row removes one at least.
        Choices row;
        for (const Feature& feature : FEATURES)
            row.push_back(random() % feature.size());
        const auto [first, second, a, b] = *missing.begin();
        row[first] = a;
        row[second] = b;
        for (std::size_t i = 0; i < FEATURE_COUNT; ++i)
            for (std::size_t j = i + 1; j < FEATURE_COUNT; ++j)
                missing.erase({i, j, row[i], row[j]});
        rows.push_back(row);
    }
    return rows;
}

GltfBytes pictureOf(std::initializer_list<std::array<unsigned char, 4>> texels) {
    ovImages::Image image(static_cast<unsigned int>(texels.size()), 1, 4, ovImages::COMPONENT_TYPE::UINT8,
                          ovImages::COLOR_ENCODING::SRGB);
    unsigned char* out = image.getBytes().data();
    for (const auto& texel : texels)
        out = std::copy(texel.begin(), texel.end(), out);
    return ovImages::PngEncoder().encode(image.view()).bytes;
}

/// A triangle for each row of choices, under a light or none. @param light JSON of the light, or nothing
GltfBytes makeModel(const Buffer<Choices>& rows, const String& light) {
    GltfBuilder file;
    file.addFloats("VEC3", {0, 0, 0.5f, 1, 0, 0.5f, 0, 1, 0.5f});
    file.addFloats("VEC2", {0, 0, 1, 0, 0, 1});
    file.addFloats("VEC3", {0, 0, 1, 0, 0, 1, 0, 0, 1});
    // One metalness all over, and one that varies.
    const unsigned int plain = file.addView(pictureOf({{10, 60, 128, 255}, {90, 7, 128, 30}}));
    const unsigned int varied = file.addView(pictureOf({{200, 60, 3, 255}, {90, 7, 250, 127}}));
    String primitives;
    String materials;
    for (const Choices& row : rows) {
        primitives +=
            (primitives.empty() ? "" : ", ") +
            String(R"({"attributes": {"POSITION": 0, "TEXCOORD_0": 1, "NORMAL": 2}, "material": )") +
            std::to_string(&row - rows.data()) + "}";
        materials += (materials.empty() ? "" : ",\n") + materialOf(row);
    }
    file.members =
        R"("meshes": [{"primitives": [)" + primitives + R"(]}], "materials": [)" + materials +
        R"(], "textures": [{"source": 0}, {"source": 1}], "images": [{"mimeType": "image/png", "bufferView": )" +
        std::to_string(plain) + R"(}, {"mimeType": "image/png", "bufferView": )" + std::to_string(varied) +
        R"(}], "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0)";
    if (!light.empty())
        file.members += R"(, "rotation": [0.1825742, 0.3651484, 0.5477226, 0.7302967], "extensions":
            {"KHR_lights_punctual": {"light": 0}}}], "extensions": {"KHR_lights_punctual": {"lights": [)" +
                        light + "]}";
    file.members += light.empty() ? "}]" : "}";
    return file.toBinary();
}

class ModelRoundTripTest : public testing::Test {
protected:
    /// Opens the session that has the model and the one that has only what was read.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_writer));
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_reader));
    }

    void expectRestored(const GltfBytes& bytes) {
        ovGraphics::GltfDecodeResult decoded = ovGraphics::GltfEncoder().decode(bytes);
        ASSERT_TRUE(decoded) << decoded.error;
        const ovVeldris::ModelLoadResult loaded =
            ovVeldris::ModelLoader(&_writer.getSystem()).create(*decoded.scene);
        ASSERT_TRUE(loaded) << loaded.error;
        giveModelLight(*loaded.model);
        const Buffer<PbsMaterial*> materials = materialsOf(*loaded.model);
        const String text = writeMaterialFile(materials);
        std::ofstream(_folder.getPath("m.json"), std::ios::binary) << text;
        Buffer<DeclarationProblem> problems;
        const Buffer<PbsMaterial*> read =
            readMaterialFile(_folder.getPath("m.json"), _reader.getSystem(), problems);
        for (const DeclarationProblem& problem : problems)
            ADD_FAILURE() << toText("m.json", problem);
        ASSERT_EQ(read.size(), materials.size());
        for (std::size_t i = 0; i < read.size(); ++i)
            EXPECT_EQ(describe(*read[i]), describe(*materials[i]));
        EXPECT_EQ(writeMaterialFile(read), text);
    }

    Session _writer;
    Session _reader;
    TemporaryFolder _folder;
};

TEST_F(ModelRoundTripTest, anyTwoFeaturesOfTheReaderComeBackExactly) {
    const Buffer<Choices> rows = makePairwise();
    ASSERT_GT(rows.size(), 30u);
    expectRestored(makeModel(rows, ""));
}

TEST_F(ModelRoundTripTest, lightsComeBackExactly) {
    for (const char* const light : {R"({"type": "directional"})",
                                    R"({"type": "directional", "color": [0.1, 1e-7, 0.7], "intensity": 0.3})",
                                    R"({"type": "directional", "color": [0, 1, 0.3], "intensity": 1e-44})",
                                    R"({"type": "directional", "intensity": 0})"})
        expectRestored(makeModel({Choices(FEATURE_COUNT, 0)}, light));
}

} // namespace
