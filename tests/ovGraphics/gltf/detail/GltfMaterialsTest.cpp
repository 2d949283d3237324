#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

// A file of materials with six textures, and a triangle of the first material with two sets of texture
// coordinates.
GltfBuilder makeMaterials(const std::string& materials) {
    GltfBuilder file;
    file.addView(makePng());
    file.addFloats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0});
    file.addFloats("VEC2", {0, 0, 1, 0, 0, 1});
    file.addFloats("VEC2", {5, 5, 6, 5, 5, 6});
    file.members = R"("images": [{"bufferView": 0}], "textures": [{"source": 0}, {"source": 0}, {"source": 0},
                     {"source": 0}, {"source": 0}, {"source": 0}], "meshes": [{"primitives": [{"attributes":
                     {"POSITION": 0, "TEXCOORD_0": 1, "TEXCOORD_1": 2}, "material": 0}]}], "materials": [)" +
                   materials + "]";
    return file;
}

GltfMaterial decodeMaterial(const std::string& json, Strings expectedWarnings = {}) {
    const GltfScene scene = decodeWhole(makeMaterials(json));
    EXPECT_EQ(scene.warnings, expectedWarnings);
    return scene.materials.empty() ? GltfMaterial() : scene.materials[0];
}

} // namespace

TEST(GltfMaterialsTest, hasTheDefaultsOfTheFormat) {
    const GltfMaterial material = decodeMaterial("{}");
    EXPECT_EQ(material.name, "material 0");
    EXPECT_EQ(material.workflow, GLTF_WORKFLOW::METALLIC_ROUGHNESS);
    EXPECT_EQ(material.baseColor, Vector(1, 1, 1, 1));
    EXPECT_EQ(material.metallic, 1.0f);
    EXPECT_EQ(material.roughness, 1.0f);
    EXPECT_EQ(material.emissive, Vector());
    EXPECT_EQ(material.alphaMode, GLTF_ALPHA_MODE::OPAQUE);
    EXPECT_EQ(material.alphaCutoff, 0.5f);
    EXPECT_FALSE(material.doubleSided);
    EXPECT_FALSE(material.unlit);
    for (const int texture :
         {material.baseColorTexture, material.metallicRoughnessTexture, material.normalTexture,
          material.occlusionTexture, material.emissiveTexture, material.specularGlossinessTexture})
        EXPECT_EQ(texture, -1);
}

TEST(GltfMaterialsTest, readsMetalAndRoughness) {
    const GltfScene scene = decodeWhole(makeMaterials(R"({"name": "Gold", "pbrMetallicRoughness": {
        "baseColorFactor": [0.1, 0.2, 0.3, 0.4], "baseColorTexture": {"index": 0}, "metallicFactor": 0.5,
        "roughnessFactor": 0.25, "metallicRoughnessTexture": {"index": 1}},
        "normalTexture": {"index": 2}, "occlusionTexture": {"index": 1}, "emissiveTexture": {"index": 4},
        "emissiveFactor": [0.5, 1, 0.25], "alphaMode": "MASK", "alphaCutoff": 0.75, "doubleSided": true,
        "extensions": {"KHR_materials_emissive_strength": {"emissiveStrength": 8}}})"));
    ASSERT_EQ(scene.materials.size(), 1u);
    const GltfMaterial& material = scene.materials[0];
    EXPECT_EQ(material.name, "Gold");
    EXPECT_EQ(material.baseColor, Vector(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(material.baseColorTexture, 0);
    EXPECT_EQ(material.metallic, 0.5f);
    EXPECT_EQ(material.roughness, 0.25f);
    EXPECT_EQ(material.metallicRoughnessTexture, 1);
    EXPECT_EQ(material.normalTexture, 2);
    EXPECT_EQ(material.occlusionTexture, 1);
    EXPECT_EQ(material.emissiveTexture, 4);
    EXPECT_EQ(material.emissive, Vector(4, 8, 2));
    EXPECT_EQ(material.alphaMode, GLTF_ALPHA_MODE::MASK);
    EXPECT_EQ(material.alphaCutoff, 0.75f);
    EXPECT_TRUE(material.doubleSided);
    const bool colors[] = {true, false, false, false, true, false};
    const bool numbers[] = {false, true, true, false, false, false};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(scene.textures[i].usedAsColor, colors[i]) << i;
        EXPECT_EQ(scene.textures[i].usedAsData, numbers[i]) << i;
    }
    EXPECT_EQ(scene.warnings, Strings());
}

TEST(GltfMaterialsTest, readsSpecularAndGlossiness) {
    const GltfMaterial material = decodeMaterial(R"({"extensions": {"KHR_materials_pbrSpecularGlossiness": {
        "diffuseFactor": [0.1, 0.2, 0.3, 0.4], "diffuseTexture": {"index": 1}, "specularFactor": [0.5, 0.6, 0.7],
        "glossinessFactor": 0.8, "specularGlossinessTexture": {"index": 2}}},
        "pbrMetallicRoughness": {"baseColorFactor": [0, 0, 0, 0], "baseColorTexture": {"index": 5}},
        "alphaMode": "BLEND"})");
    EXPECT_EQ(material.workflow, GLTF_WORKFLOW::SPECULAR_GLOSSINESS);
    EXPECT_EQ(material.baseColor, Vector(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(material.baseColorTexture, 1);
    EXPECT_EQ(material.specular, Vector(0.5f, 0.6f, 0.7f));
    EXPECT_EQ(material.glossiness, 0.8f);
    EXPECT_EQ(material.specularGlossinessTexture, 2);
    EXPECT_EQ(material.alphaMode, GLTF_ALPHA_MODE::BLEND);
}

TEST(GltfMaterialsTest, warnsOfWhatIsDrawnOtherwise) {
    struct Case {
        const char* material;
        const char* warning;
    };
    const Case cases[] = {
        {R"({"name": "N", "alphaMode": "GLASS"})",
         "material 0 \"N\": its 'alphaMode' is \"GLASS\"; it is drawn opaque"},
        {R"({"extensions": {"KHR_materials_clearcoat": {"clearcoatFactor": 1}}})",
         "material 0: KHR_materials_clearcoat is ignored; it is drawn without"},
        {R"({"extensions": {"KHR_materials_ior": {"ior": 1.3}}})",
         "material 0: KHR_materials_ior is ignored; it is drawn without"},
        {R"({"pbrMetallicRoughness": {"roughnessFactor": 7}})",
         "material 0, pbrMetallicRoughness: 'roughnessFactor' is 7; 1 is taken instead"},
        {R"({"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}, "metallicRoughnessTexture": {"index": 3,
             "texCoord": 1}}, "normalTexture": {"index": 1, "extensions": {"KHR_texture_transform": {"scale": [2, 2]}}}})",
         "material 0: metallicRoughnessTexture, normalTexture should be read with other texture coordinates "
         "than "
         "baseColorTexture; they are drawn with those of baseColorTexture"},
    };
    for (const Case& row : cases)
        decodeMaterial(row.material, {row.warning});
}

TEST(GltfMaterialsTest, whatHasASetOfItsOwnIsLeftOut) {
    struct Case {
        const char* material;
        int normal, occlusion, emissive; ///< textures that stay
        Strings warnings;
    };
    const Case cases[] = {
        {R"({"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}},
             "occlusionTexture": {"index": 1, "texCoord": 1}})",
         -1,
         -1,
         -1,
         {"material 0: occlusionTexture should be read with TEXCOORD_1, but baseColorTexture is with "
          "TEXCOORD_0, "
          "and a material reads one set of texture coordinates; occlusionTexture is left out"}},
        {R"({"occlusionTexture": {"index": 1, "texCoord": 1}, "emissiveTexture": {"index": 2}})",
         -1,
         -1,
         2,
         {"material 0: occlusionTexture should be read with TEXCOORD_1, but emissiveTexture is with "
          "TEXCOORD_0, "
          "and a material reads one set of texture coordinates; occlusionTexture is left out"}},
        {R"({"pbrMetallicRoughness": {"baseColorTexture": {"index": 0, "extensions": {"KHR_texture_transform":
             {"scale": [4, 4]}}}}, "occlusionTexture": {"index": 1}})",
         -1,
         -1,
         -1,
         {"material 0: occlusionTexture should be read with TEXCOORD_0, but baseColorTexture is with "
          "TEXCOORD_0 "
          "and a KHR_texture_transform, and a material reads one set of texture coordinates; "
          "occlusionTexture "
          "is left out"}},
        {R"({"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}, "normalTexture": {"index": 3, "texCoord": 1},
             "emissiveTexture": {"index": 2, "texCoord": 1}, "emissiveFactor": [1, 1, 1]})",
         -1,
         -1,
         -1,
         {"material 0: normalTexture should be read with TEXCOORD_1, but baseColorTexture is with "
          "TEXCOORD_0, "
          "and a material reads one set of texture coordinates; normalTexture is left out",
          "material 0: emissiveTexture should be read with TEXCOORD_1, but baseColorTexture is with "
          "TEXCOORD_0, "
          "and a material reads one set of texture coordinates; emissiveTexture is left out"}},
        {R"({"occlusionTexture": {"index": 1, "texCoord": 1}})", -1, 1, -1, {}},
        {R"({"pbrMetallicRoughness": {"baseColorTexture": {"index": 0, "texCoord": 1}},
             "normalTexture": {"index": 4, "texCoord": 1}, "occlusionTexture": {"index": 1, "texCoord": 1},
             "emissiveTexture": {"index": 5, "texCoord": 1}})",
         4,
         1,
         5,
         {}}};
    for (const Case& row : cases) {
        const GltfMaterial material = decodeMaterial(row.material, row.warnings);
        EXPECT_EQ(material.normalTexture, row.normal) << row.material;
        EXPECT_EQ(material.occlusionTexture, row.occlusion) << row.material;
        EXPECT_EQ(material.emissiveTexture, row.emissive) << row.material;
        EXPECT_EQ(material.emissive, Vector()) << "without its texture all of the surface would shine";
    }
}

TEST(GltfMaterialsTest, keepsWhatIsLeftToTheCaller) {
    const std::string text =
        R"({"normalTexture": {"index": 0, "scale": 0.5}, "extensions": {"KHR_materials_unlit": {}},
                                 "occlusionTexture": {"index": 0, "strength": 0.25}})";
    const GltfScene scene = decodeWhole(makeMaterials(text));
    EXPECT_EQ(scene.materials.at(0).normalScale, 0.5f);
    EXPECT_EQ(scene.materials.at(0).occlusionStrength, 0.25f);
    EXPECT_TRUE(scene.materials.at(0).unlit);
}

TEST(GltfMaterialsTest, refusesTexturesThatAreNotThere) {
    EXPECT_EQ(errorOf(makeMaterials(
                  R"({"name": "N", "pbrMetallicRoughness": {"baseColorTexture": {"index": 6}}})")),
              "material 0 \"N\", pbrMetallicRoughness, baseColorTexture: 'index' is 6, but the file has 6 "
              "textures");
    EXPECT_EQ(errorOf(makeMaterials(R"({"emissiveTexture": {"index": "x"}})")),
              "material 0, emissiveTexture: 'index' is no index");
}

TEST(GltfMaterialsTest, bakesTheTextureCoordinatesThatAreRead) {
    struct Case {
        const char* name;
        const char* material;
        Vector expected[3]; ///< of the corners (0, 0), (1, 0), (0, 1) of set 0; set 1 is 5 more
    };
    const Case cases[] = {
        {"no texture", "{}", {{0, 0}, {1, 0}, {0, 1}}},
        {"set 1", R"({"emissiveTexture": {"index": 0, "texCoord": 1}})", {{5, 5}, {6, 5}, {5, 6}}},
        {"moved and scaled",
         R"({"emissiveTexture": {"index": 0, "extensions": {"KHR_texture_transform":
             {"offset": [0.5, 0.25], "scale": [2, 3]}}}})",
         {{0.5f, 0.25f}, {2.5f, 0.25f}, {0.5f, 3.25f}}},
        // Counter-clockwise in a picture whose v runs down: u turns towards -v.
        {"turned",
         R"({"emissiveTexture": {"index": 0, "extensions": {"KHR_texture_transform":
             {"rotation": 1.5707963267948966}}}})",
         {{0, 0}, {0, -1}, {1, 0}}},
        {"scaled, turned, moved",
         R"({"emissiveTexture": {"index": 0, "extensions": {"KHR_texture_transform":
             {"rotation": 1.5707963267948966, "scale": [2, 3], "offset": [10, 20]}}}})",
         {{10, 20}, {10, 18}, {13, 20}}},
        {"other set by extension",
         R"({"emissiveTexture": {"index": 0, "texCoord": 0, "extensions":
             {"KHR_texture_transform": {"texCoord": 1}}}})",
         {{5, 5}, {6, 5}, {5, 6}}},
        {"all alike",
         R"({"emissiveTexture": {"index": 0, "texCoord": 1}, "occlusionTexture": {"index": 1,
             "texCoord": 1}})",
         {{5, 5}, {6, 5}, {5, 6}}},
    };
    for (const Case& row : cases) {
        GltfDecodeOptions options;
        options.optimizeMeshes = false;
        const GltfScene scene = decodeWhole(makeMaterials(row.material), options);
        EXPECT_EQ(scene.warnings, Strings()) << row.name;
        const auto uvs = valuesOf(scene.meshes.at(0).primitives.at(0), "TEXCOORD");
        ASSERT_EQ(uvs.size(), 3u) << row.name;
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_LT((uvs[i] - row.expected[i]).getLengthVec2(), 1e-5f)
                << row.name << ' ' << uvs[i].toString();
    }
}
