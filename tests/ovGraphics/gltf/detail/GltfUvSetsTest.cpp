#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/gltf/GltfTesting.h>

using ovGraphics::GltfScene;
using ovMaths::Vector;

namespace {

constexpr const char* TWO_SETS = R"("TEXCOORD_0": 1, "TEXCOORD_1": 2)";

// A mesh of triangles, each with attributes of its own, whose material reads occlusion with a set that is not
// the base colour's. Accessor 1 is a set, 2 and 3 are given.
GltfBuilder makeOccluded(const std::vector<float>& second, const std::vector<std::string>& attributes,
                         const std::string& occlusion = R"("texCoord": 1)") {
    GltfBuilder file;
    file.addView(makePng());
    file.addFloats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0});
    file.addFloats("VEC2", {0, 0.1f, 0.7f, 0, 0.3f, 1});
    file.addFloats("VEC2", second);
    file.addFloats("VEC2", {0, 0, 0.5f, 0, 0, 0.5f});
    std::string primitives;
    for (const std::string& own : attributes)
        primitives += (primitives.empty() ? "" : ", ") + (R"({"attributes": {"POSITION": 0, )" + own) +
                      R"(}, "material": 1})";
    file.members = R"("images": [{"bufferView": 0}], "textures": [{"source": 0}], "materials": [{},
                     {"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}, "occlusionTexture": {"index": 0, )" +
                   occlusion + R"(}}], "meshes": [{"primitives": [)" + primitives + "]}]";
    return file;
}

} // namespace

TEST(GltfUvSetsTest, oneSetWrittenTwiceIsOneSet) {
    const std::vector<float> same = {0, 0.1f, 0.7f, 0, 0.3f, 1};
    // 0.3 of 65535 and 0.7 of it, as files of 16 bits have them.
    const std::vector<float> rounded = {0, 0.100008f, 0.699992f, 0, 0.300004f, 1};
    std::vector<float> moved = same;
    moved[5] += 0.001f; // four texels of 4096
    struct Case {
        const char* name;
        std::vector<float> second;
        std::vector<std::string> attributes;
        std::string occlusion;
        bool isKept;
    };
    const std::string wanted = R"("texCoord": 1)";
    const Case cases[] = {
        {"one array under both names", same, {R"("TEXCOORD_0": 1, "TEXCOORD_1": 1)"}, wanted, true},
        {"a copy", same, {TWO_SETS}, wanted, true},
        {"a rounded copy", rounded, {TWO_SETS}, wanted, true},
        {"another set", moved, {TWO_SETS}, wanted, false},
        {"not as long", {0, 0.1f, 0.7f, 0}, {TWO_SETS}, wanted, false},
        {"a copy in all primitives", same, {TWO_SETS, R"("TEXCOORD_0": 1, "TEXCOORD_1": 1)"}, wanted, true},
        {"in one another set", same, {TWO_SETS, R"("TEXCOORD_0": 1, "TEXCOORD_1": 3)"}, wanted, false},
        {"the first primitive has another set",
         same,
         {R"("TEXCOORD_0": 3, "TEXCOORD_1": 1)", TWO_SETS},
         wanted,
         false},
        {"a set that is not there is drawn with the first", same, {R"("TEXCOORD_0": 1)"}, wanted, true},
        {"no set at all", same, {R"("NORMAL": 0)"}, wanted, true},
        {"worn by no mesh", same, {}, wanted, false},
        {"a transformation that does nothing",
         same,
         {TWO_SETS},
         R"("extensions": {"KHR_texture_transform": {"texCoord": 1, "offset": [0, 0], "scale": [1, 1]}})",
         true},
        {"a copy, but moved",
         same,
         {TWO_SETS},
         R"("texCoord": 1, "extensions": {"KHR_texture_transform": {"offset": [0.25, 0]}})",
         false},
    };
    for (const Case& row : cases) {
        const GltfScene scene = decodeWhole(makeOccluded(row.second, row.attributes, row.occlusion));
        ASSERT_EQ(scene.materials.size(), 2u);
        EXPECT_EQ(scene.materials[1].occlusionTexture, row.isKept ? 0 : -1) << row.name;
        bool isTold = false;
        for (const ovMemory::String& warning : scene.warnings)
            isTold = isTold || warning.find("occlusionTexture is left out") != ovMemory::String::npos;
        EXPECT_EQ(isTold, !row.isKept) << row.name;
    }
}

TEST(GltfUvSetsTest, coordinatesThatAreNoNumbersEqualNothing) {
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    const GltfScene scene =
        decodeWhole(makeOccluded({nothing, 0.1f, 0.7f, 0, 0.3f, 1}, {R"("TEXCOORD_0": 2, "TEXCOORD_1": 2)"}));
    EXPECT_EQ(scene.materials.at(1).occlusionTexture, -1);
}

TEST(GltfUvSetsTest, aSetThatCannotBeReadIsAnError) {
    EXPECT_EQ(errorOf(makeOccluded({0, 0, 0, 0, 0, 0}, {R"("TEXCOORD_0": 1, "TEXCOORD_1": 0)"})),
              "mesh 0, primitive 0, accessor 0: its type is \"VEC3\", expected VEC2");
    EXPECT_EQ(errorOf(makeOccluded({0, 0, 0, 0, 0, 0}, {R"("TEXCOORD_0": 1, "TEXCOORD_1": 9)"})),
              "mesh 0, primitive 0, attributes: 'TEXCOORD_1' is 9, but the file has 4 accessors");
}

TEST(GltfUvSetsTest, comparisonsCountAgainstTheMemoryOfTheFile) {
    ovGraphics::GltfDecodeOptions options;
    options.maxBytes = 150; // two sets of three vectors are 96, and the mesh takes more
    EXPECT_NE(errorOf(makeOccluded({0, 0, 0, 0, 0, 0}, {TWO_SETS}), options).find("raise maxBytes"),
              std::string::npos);
}
