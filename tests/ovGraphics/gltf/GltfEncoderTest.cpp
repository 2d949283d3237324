#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <random>
#include <support/TemporaryFolder.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

void writeFile(const std::string& path, const GltfBytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

GltfBytes bytesOf(const std::string& text) {
    return GltfBytes(text.begin(), text.end());
}

} // namespace

TEST(GltfEncoderTest, knowsItsFiles) {
    const GltfBytes binary = makeTriangle().toBinary();
    struct Case {
        GltfBytes bytes;
        bool can;
    };
    const Case cases[] = {
        {binary, true},
        {makeTriangle().toText(), true},
        {bytesOf("\xef\xbb\xbf \r\n{\"asset\": 5}"), true},
        {GltfBytes(binary.begin(), binary.begin() + 8), true},
        {GltfBytes(binary.begin(), binary.begin() + 7), false},
        {bytesOf(std::string("glTF\1\0\0\0", 8)), false},
        {bytesOf("{\"scene\": 0}"), false},
        {bytesOf("[\"asset\"]"), false},
        {{}, false},
        {makePng(), false},
    };
    for (const Case& row : cases)
        EXPECT_EQ(GltfEncoder().canDecode(row.bytes), row.can);
}

TEST(GltfEncoderTest, readsBothForms) {
    for (const GltfBytes& bytes : {makeRich().toBinary(), makeRich().toText()}) {
        const GltfDecodeResult result = decodeGltf(bytes);
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.error, "");
        const GltfScene& scene = *result.scene;
        EXPECT_EQ(scene.meshes.at(0).name, "Tri");
        EXPECT_EQ(scene.meshes.at(0).primitives.at(0).vertexCount, 3u);
        EXPECT_EQ(scene.meshes.at(0).primitives.at(0).material, 0);
        EXPECT_EQ(scene.materials.at(0).normalTexture, 0);
        EXPECT_FALSE(scene.images.at(0).isMissing());
        EXPECT_EQ(scene.cameras.size(), 1u);
        EXPECT_TRUE(scene.light);
        EXPECT_EQ(scene.nodes.at(0).camera, 0);
        EXPECT_EQ(scene.warnings, Strings({"skin 0: it is drawn in its rest pose; it does not move",
                                           "its 1 animations are ignored; everything stands still"}));
    }
}

TEST(GltfEncoderTest, readsOutsideFilesBesideTheModel) {
    const TemporaryFolder folder;
    const GltfBuilder file = makeTriangle();
    std::filesystem::create_directory(folder.getPath("parts"));
    writeFile(folder.getPath("parts/a b.bin"), file.getBytes());
    writeFile(folder.getPath("model.gltf"), bytesOf(file.toJson("parts/a%20b.bin")));
    writeFile(folder.getPath("model.glb"), file.toBinary());
    for (const char* name : {"model.gltf", "model.glb"}) {
        const GltfDecodeResult result = GltfEncoder().decodeFile(folder.getPath(name));
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.scene->boundingBox.getMaximum(), Vector(1, 1, -0.5f));
    }
    // From memory there is no folder, unless one is named.
    GltfDecodeOptions options;
    const GltfBytes text = bytesOf(file.toJson("parts/a%20b.bin"));
    EXPECT_EQ(
        decodeGltf(text, options).error,
        "buffer 0: it lies in another file, \"parts/a%20b.bin\", and no folder is known to look for it in");
    options.folder = folder.getPath();
    EXPECT_TRUE(decodeGltf(text, options));
    options.folder = folder.getPath("parts");
    EXPECT_FALSE(decodeGltf(text, options));
}

TEST(GltfEncoderTest, staysInTheFolderOfTheModel) {
    const TemporaryFolder folder;
    const GltfBuilder file = makeTriangle();
    std::filesystem::create_directory(folder.getPath("models"));
    writeFile(folder.getPath("secret.bin"), file.getBytes());
    const std::string addresses[] = {"../secret.bin", "%2e%2e/secret.bin", "x/../../secret.bin",
                                     folder.getPath("secret.bin"), "file://" + folder.getPath("secret.bin")};
    for (const std::string& address : addresses) {
        writeFile(folder.getPath("models/m.gltf"), bytesOf(file.toJson(address)));
        const GltfDecodeResult result = GltfEncoder().decodeFile(folder.getPath("models/m.gltf"));
        EXPECT_FALSE(result) << address;
        EXPECT_NE(result.error.find("is refused"), std::string::npos) << result.error;
    }
}

TEST(GltfEncoderTest, namesThePathOfAFileThatCannotBeRead) {
    const TemporaryFolder folder;
    const GltfDecodeResult missing = GltfEncoder().decodeFile(folder.getPath("none.glb"));
    EXPECT_FALSE(missing);
    EXPECT_NE(missing.error.find(folder.getPath("none.glb")), std::string::npos) << missing.error;
    writeFile(folder.getPath("bad.glb"), bytesOf("[]"));
    EXPECT_EQ(GltfEncoder().decodeFile(folder.getPath("bad.glb")).error,
              "the model '" + folder.getPath("bad.glb") +
                  "' cannot be read: the JSON is no object, so this is no glTF file");
    writeFile(folder.getPath("picture.glb"), bytesOf("\x89PNG\r\n\x1a\n{"));
    EXPECT_EQ(
        GltfEncoder().decodeFile(folder.getPath("picture.glb")).error,
        "the model '" + folder.getPath("picture.glb") +
            "' cannot be read: it begins neither as a binary file of glTF nor as JSON; give a .glb or .gltf "
            "file");
}

TEST(GltfEncoderTest, checksVersionsAndExtensions) {
    struct Case {
        const char* asset;
        const char* error; ///< null: none
        Strings warnings = {};
    };
    const Case cases[] = {
        {R"({"version": "2.0"})", nullptr},
        {R"({"version": "2.1", "minVersion": "2.0"})", nullptr},
        {R"({"version": "2.1", "minVersion": "2.1"})", nullptr},
        {R"({"version": "2.0", "minVersion": "2.5"})",
         "it needs a reader of glTF \"2.5\"; this one is of 2.0"},
        {R"({"version": "1.0"})", "its version is \"1.0\"; only glTF 2 can be read"},
        {"{}", "its version is missing; only glTF 2 can be read"},
        {"7", "its version is missing; only glTF 2 can be read"},
        {R"({"version": "2.0"}, "extensionsRequired": ["KHR_texture_transform", "KHR_draco_mesh_compression"])",
         "it requires the extension \"KHR_draco_mesh_compression\", which is not known; export it without"},
        {R"({"version": "2.0"}, "extensionsRequired": ["EXT_meshopt_compression"])",
         "it requires the extension \"EXT_meshopt_compression\", which is not known; export it without"},
        {R"({"version": "2.0"}, "extensionsRequired": ["KHR_texture_basisu"])",
         "it requires the extension \"KHR_texture_basisu\", which is not known; export it without"},
        {R"({"version": "2.0"}, "extensionsUsed": ["KHR_materials_unlit", "X_fun"])",
         nullptr,
         {"the extension \"X_fun\" is not known and is ignored"}},
    };
    for (const Case& row : cases) {
        GltfBuilder file = makeTriangle();
        file.asset = row.asset;
        if (row.error)
            EXPECT_EQ(errorOf(file), row.error);
        else
            EXPECT_EQ(decodeWhole(file).warnings, row.warnings) << row.asset;
    }
}

TEST(GltfEncoderTest, refusesFilesCutShortAnywhere) {
    const GltfBytes binary = makeRich().toBinary();
    for (std::size_t size = 0; size < binary.size(); ++size) {
        const GltfDecodeResult result = GltfEncoder().decode({binary.data(), size});
        ASSERT_FALSE(result) << size;
        ASSERT_NE(result.error, "") << size;
    }
    const GltfBytes text = makeRich().toText();
    for (std::size_t size = 0; size < text.size(); ++size)
        ASSERT_FALSE(GltfEncoder().decode({text.data(), size})) << size;
}

TEST(GltfEncoderTest, survivesChangedBytes) {
    const GltfBytes whole = makeRich().toBinary();
    std::mt19937 random(7);
    GltfDecodeOptions options;
    options.maxBytes = 1000000;
    std::size_t decoded = 0;
    for (int round = 0; round < 4000; ++round) {
        GltfBytes bytes = whole;
        for (int change = 0; change <= round % 3; ++change)
            bytes[random() % bytes.size()] = static_cast<unsigned char>(random());
        const GltfDecodeResult result = decodeGltf(bytes, options);
        EXPECT_EQ(result.error.empty(), bool(result));
        decoded += bool(result);
    }
    // Changes in numbers and names leave a file; changes in structure do not.
    EXPECT_GT(decoded, 100u);
    EXPECT_LT(decoded, 3900u);
}

TEST(GltfEncoderTest, survivesChangedNumbers) {
    const std::string json = makeRich().toJson();
    const GltfBytes binary = makeRich().getBytes();
    GltfDecodeOptions options;
    options.maxBytes = 1000000;
    for (std::size_t place = 0; place < json.size(); ++place) {
        if (json[place] < '0' || json[place] > '9')
            continue;
        for (const char* value :
             {"-1", "1e300", "4294967295", "9007199254740992", "0.5", "null", "[]", "\"\"", "{}"}) {
            std::string changed = json;
            changed.replace(place, 1, value);
            const GltfDecodeResult result = decodeGltf(GltfBuilder::toBinary(changed, binary), options);
            EXPECT_EQ(result.error.empty(), bool(result));
        }
    }
}

TEST(GltfEncoderTest, standsNestingOfAnyDepth) {
    const std::string deep = std::string(90000, '[') + std::string(90000, ']');
    GltfBuilder file = makeTriangle("", R"(, "extras": )" + deep);
    EXPECT_EQ(decodeWhole(file).warnings, Strings());
    file = makeTriangle(R"(, "extensions": {"X": )" + deep + "}", R"(, "materials": )" + deep);
    EXPECT_EQ(decodeWhole(file).materials.size(), 1u);
    const std::string deeper = std::string(1000000, '[') + std::string(1000000, ']');
    EXPECT_NE(errorOf(makeTriangle("", R"(, "extras": )" + deeper)).find("the JSON is not valid"),
              std::string::npos);
}

TEST(GltfEncoderTest, keepsNamesOfAllKinds) {
    GltfBuilder file;
    file.members =
        R"("nodes": [{"name": "Räder \u0000 \n \"x\""}, {"name": "../../etc"}, {"name": ""}, {"name": 7}])";
    const GltfScene scene = decodeWhole(file);
    ASSERT_EQ(scene.nodes.size(), 4u);
    EXPECT_EQ(scene.nodes[0].name, std::string("Räder \0 \n \"x\"", 14));
    EXPECT_EQ(scene.nodes[1].name, "../../etc");
    EXPECT_EQ(scene.nodes[2].name, "node 2");
    EXPECT_EQ(scene.nodes[3].name, "node 3");
}

TEST(GltfEncoderTest, readsAnEmptyFile) {
    const GltfDecodeResult result = decodeGltf(bytesOf(R"({"asset": {"version": "2.0"}})"));
    ASSERT_TRUE(result) << result.error;
    EXPECT_TRUE(result.scene->nodes.empty());
    EXPECT_TRUE(result.scene->boundingBox.isEmpty());
    EXPECT_EQ(result.scene->warnings, Strings());
}

TEST(GltfEncoderTest, readsEveryKindOfPrimitiveAtOnce) {
    const GltfScene scene = decodeWhole(makeVaried());
    ASSERT_EQ(scene.meshes.at(0).primitives.size(), 4u);
    const PRIMITIVE_TOPOLOGY topologies[] = {PRIMITIVE_TOPOLOGY::TRIANGLELIST,
                                             PRIMITIVE_TOPOLOGY::TRIANGLELIST, PRIMITIVE_TOPOLOGY::LINESTRIP,
                                             PRIMITIVE_TOPOLOGY::POINTLIST};
    const std::size_t corners[] = {6, 6, 5, 4};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(scene.meshes[0].primitives[i].topology, topologies[i]);
        EXPECT_EQ(cornersOf(scene.meshes[0].primitives[i], "POSITION").size(), corners[i]);
    }
    EXPECT_EQ(scene.warnings.size(), 4u); // the image, zero normals, the colours, the morph targets
}
