#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/gltf/GltfTesting.h>
#include <support/Numbers.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

constexpr float PRIMITIVE_ROUNDINGS = 1e-6f;

// A primitive of a 2 by 1 patch in the plane z = 1 of the file: positions are accessor 0.
GltfBuilder makePatch(const std::string& attributes, const std::string& primitive = "",
                      const std::string& rest = "") {
    GltfBuilder file;
    file.addFloats("VEC3", {0, 0, 1, 1, 0, 1, 0, 1, 1, 1, 1, 1, 2, 0, 1, 2, 1, 1});
    file.members = R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0)" + attributes + "}" +
                   primitive + "}]}]" + rest;
    return file;
}

const GltfPrimitive& onlyPrimitive(const GltfScene& scene) {
    return scene.meshes.at(0).primitives.at(0);
}

std::vector<std::string> attributesOf(const GltfPrimitive& primitive) {
    std::vector<std::string> names;
    for (unsigned int i = 0; i < primitive.composition.getAttributeCount(); ++i)
        names.push_back(primitive.composition.getAttribute(i).name);
    return names;
}

} // namespace

TEST(GltfPrimitiveTest, drawsCounterClockwiseFacesClockwise) {
    const GltfScene scene = decodeWhole(makeTriangle());
    const GltfPrimitive& primitive = onlyPrimitive(scene);
    EXPECT_EQ(primitive.topology, PRIMITIVE_TOPOLOGY::TRIANGLELIST);
    EXPECT_EQ(primitive.material, -1);
    EXPECT_EQ(attributesOf(primitive), std::vector<std::string>({"POSITION", "NORMAL"}));
    const auto corners = cornersOf(primitive, "POSITION");
    ASSERT_EQ(corners.size(), 3u);
    // The file's eye sees the triangle from +z, counter-clockwise. Here the eye is at -z and looks along +z,
    // with +x still to its right: the area of a clockwise triangle is negative.
    const float area = (corners[1].x - corners[0].x) * (corners[2].y - corners[0].y) -
                       (corners[2].x - corners[0].x) * (corners[1].y - corners[0].y);
    EXPECT_LT(area, 0.0f);
    EXPECT_EQ(Vector::crossVec3(corners[1] - corners[0], corners[2] - corners[0]), Vector(0, 0, -1));
    for (const Vector& corner : corners)
        EXPECT_EQ(corner.z, -0.5f);
    for (const Vector& normal : valuesOf(primitive, "NORMAL"))
        EXPECT_EQ(normal, Vector(0, 0, -1));
    EXPECT_EQ(primitive.boundingBox.getMinimum(), Vector(0, 0, -0.5f));
    EXPECT_EQ(primitive.boundingBox.getMaximum(), Vector(1, 1, -0.5f));
}

TEST(GltfPrimitiveTest, readsEveryModeWithAndWithoutIndices) {
    struct Case {
        unsigned int mode;
        bool indexed; ///< by 5, 4, 3, 2, 1, 0
        PRIMITIVE_TOPOLOGY topology;
        std::vector<int> corners; ///< which of the six positions are drawn
    };
    using enum PRIMITIVE_TOPOLOGY;
    const Case cases[] = {
        {0, false, POINTLIST, {0, 1, 2, 3, 4, 5}},
        {0, true, POINTLIST, {5, 4, 3, 2, 1, 0}},
        {1, true, LINELIST, {5, 4, 3, 2, 1, 0}},
        {2, false, LINESTRIP, {0, 1, 2, 3, 4, 5, 0}},
        {2, true, LINESTRIP, {5, 4, 3, 2, 1, 0, 5}},
        {3, true, LINESTRIP, {5, 4, 3, 2, 1, 0}},
        {4, false, TRIANGLELIST, {0, 1, 2, 3, 4, 5}},
        {4, true, TRIANGLELIST, {5, 4, 3, 2, 1, 0}},
        {5, false, TRIANGLELIST, {0, 1, 2, 1, 3, 2, 2, 3, 4, 3, 5, 4}},
        {6, false, TRIANGLELIST, {1, 2, 0, 2, 3, 0, 3, 4, 0, 4, 5, 0}},
    };
    const Vector positions[] = {{0, 0, -1}, {1, 0, -1}, {0, 1, -1}, {1, 1, -1}, {2, 0, -1}, {2, 1, -1}};
    for (const COMPONENT component : {UINT8, UINT16, UINT32})
        for (const Case& row : cases) {
            GltfBuilder file = makePatch("", R"(, "mode": )" + std::to_string(row.mode) +
                                                 (row.indexed ? R"(, "indices": 1)" : ""));
            if (component == UINT8)
                file.add<std::uint8_t>({5, 4, 3, 2, 1, 0}, "SCALAR", component);
            else if (component == UINT16)
                file.add<std::uint16_t>({5, 4, 3, 2, 1, 0}, "SCALAR", component);
            else
                file.add<std::uint32_t>({5, 4, 3, 2, 1, 0}, "SCALAR", component);
            GltfDecodeOptions options;
            options.optimizeMeshes = false;
            const GltfScene scene = decodeWhole(file, options);
            const GltfPrimitive& primitive = onlyPrimitive(scene);
            EXPECT_EQ(primitive.topology, row.topology);
            std::vector<Vector> expected;
            for (const int corner : row.corners)
                expected.push_back(positions[corner]);
            const bool isTriangles = row.topology == TRIANGLELIST;
            for (std::size_t i = 0; isTriangles && i < expected.size(); i += 3)
                std::swap(expected[i + 1], expected[i + 2]);
            EXPECT_EQ(cornersOf(primitive, "POSITION"), expected) << row.mode << row.indexed;
            EXPECT_EQ(attributesOf(primitive).size(), isTriangles ? 2u : 1u);
            EXPECT_EQ(scene.warnings, Strings());
        }
}

TEST(GltfPrimitiveTest, optimizesTriangleLists) {
    GltfBuilder file = makePatch(R"(, "NORMAL": 2)", R"(, "indices": 1)");
    file.add<std::uint8_t>({0, 1, 2, 1, 3, 2, 0, 1, 2}, "SCALAR", UINT8);
    std::vector<float> normals;
    for (int i = 0; i < 6; ++i)
        normals.insert(normals.end(), {0, 0, 2});
    file.addFloats("VEC3", normals);
    const GltfScene scene = decodeWhole(file);
    // Positions 4 and 5 are not drawn.
    EXPECT_EQ(onlyPrimitive(scene).vertexCount, 4u);
    EXPECT_EQ(onlyPrimitive(scene).vertices.size(), 4u * 24u);
    EXPECT_EQ(onlyPrimitive(scene).indices.size(), 9u);
    EXPECT_EQ(valuesOf(onlyPrimitive(scene), "NORMAL"), std::vector<Vector>(4, Vector(0, 0, -1)));
}

TEST(GltfPrimitiveTest, givesTangentsWhereTheyServe) {
    struct Case {
        const char* name;
        const char* attributes;
        const char* primitive;
        bool tangents;
    };
    const Case cases[] = {
        {"normal map", R"(, "TEXCOORD_0": 1, "NORMAL": 2)", R"(, "material": 1)", true},
        {"normal map, flat", R"(, "TEXCOORD_0": 1)", R"(, "material": 1)", true},
        {"normal map, wound the other way", R"(, "TEXCOORD_0": 1, "NORMAL": 2)",
         R"(, "material": 1, "indices": 4)", true},
        {"normal map without texture coordinates", R"(, "NORMAL": 2)", R"(, "material": 1)", false},
        {"no normal map", R"(, "TEXCOORD_0": 1, "NORMAL": 2)", R"(, "material": 0)", false},
        {"no material", R"(, "TEXCOORD_0": 1, "NORMAL": 2)", "", false},
        {"tangents of the file", R"(, "TEXCOORD_0": 1, "NORMAL": 2, "TANGENT": 3)", "", true},
        {"tangents without normals", R"(, "TEXCOORD_0": 1, "TANGENT": 3)", "", false},
        {"tangents without texture coordinates", R"(, "NORMAL": 2, "TANGENT": 3)", "", false},
        {"points", R"(, "TEXCOORD_0": 1, "NORMAL": 2)", R"(, "material": 1, "mode": 0)", false},
    };
    for (const Case& row : cases) {
        GltfBuilder file = makePatch(row.attributes, row.primitive);
        // The picture stands upright, from (0, 1) at the bottom left to (2, 0) at the top right.
        file.addFloats("VEC2", {0, 1, 1, 1, 0, 0, 1, 0, 2, 1, 2, 0});
        std::vector<float> normals;
        std::vector<float> tangents;
        for (int i = 0; i < 6; ++i) {
            normals.insert(normals.end(), {0, 0, 1});
            tangents.insert(tangents.end(), {1, 0, 0, 1});
        }
        file.addFloats("VEC3", normals);
        file.addFloats("VEC4", tangents);
        file.add<std::uint16_t>({0, 2, 1, 3, 5, 4}, "SCALAR", UINT16);
        file.members +=
            R"(, "images": [{"bufferView": )" + std::to_string(file.addView(makePng())) +
            R"(}], "textures": [{"source": 0}], "materials": [{}, {"normalTexture": {"index": 0}}])";
        const GltfScene scene = decodeWhole(file);
        const GltfPrimitive& primitive = onlyPrimitive(scene);
        const auto names = attributesOf(primitive);
        EXPECT_EQ(std::count(names.begin(), names.end(), "TANGENT"), row.tangents) << row.name;
        EXPECT_EQ(std::count(names.begin(), names.end(), "BINORMAL"), row.tangents) << row.name;
        for (const Vector& tangent : valuesOf(primitive, "TANGENT"))
            EXPECT_LT((tangent - Vector(1, 0, 0)).getLengthVec3(), PRIMITIVE_ROUNDINGS) << row.name;
        for (const Vector& binormal : valuesOf(primitive, "BINORMAL"))
            EXPECT_LT((binormal - Vector(0, 1, 0)).getLengthVec3(), PRIMITIVE_ROUNDINGS) << row.name;
    }
}

TEST(GltfPrimitiveTest, readsQuantizedAttributes) {
    GltfBuilder file;
    file.asset = R"({"version": "2.0"}, "extensionsRequired": ["KHR_mesh_quantization"])";
    // Each position is padded to 8 bytes.
    const unsigned int view = file.addView(
        GltfBuilder::bytesOf<std::int16_t>({0, 0, 3, 9, 2, 0, 3, 9, 0, 2, 3, 9}), R"(, "byteStride": 8)");
    file.addAccessor(R"({"bufferView": )" + std::to_string(view) +
                     R"(, "componentType": 5122, "type": "VEC3", "count": 3})");
    file.add<std::uint16_t>({0, 65535, 65535, 65535, 0, 0}, "VEC2", UINT16, R"(, "normalized": true)");
    file.members = R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0": 1}}]}])";
    const GltfScene scene = decodeWhole(file);
    EXPECT_EQ(cornersOf(onlyPrimitive(scene), "POSITION"),
              std::vector<Vector>({Vector(0, 0, -3), Vector(0, 2, -3), Vector(2, 0, -3)}));
    EXPECT_EQ(cornersOf(onlyPrimitive(scene), "TEXCOORD"),
              std::vector<Vector>({Vector(0, 1), Vector(0, 0), Vector(1, 1)}));
    EXPECT_EQ(scene.warnings, Strings());
}

TEST(GltfPrimitiveTest, keepsThePictureOfBadNumbers) {
    GltfBuilder file;
    file.addFloats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, NOT_A_NUMBER, 0, 1, 0, 0, 0, 1, 0});
    file.addFloats("VEC3", {0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1});
    file.addFloats("VEC2", {0, 0, std::numeric_limits<float>::infinity(), 0, 0, 1, 0, 0, 0, 0, 0, 0});
    file.members = R"("meshes": [{"name": "M", "primitives": [{"attributes":
                      {"POSITION": 0, "NORMAL": 1, "TEXCOORD_0": 2}}]}])";
    const GltfScene scene = decodeWhole(file);
    const GltfPrimitive& primitive = onlyPrimitive(scene);
    EXPECT_EQ(primitive.indices.size(), 3u);
    EXPECT_EQ(cornersOf(primitive, "POSITION"),
              std::vector<Vector>({Vector(0, 0, 0), Vector(0, 1, 0), Vector(1, 0, 0)}));
    EXPECT_EQ(cornersOf(primitive, "NORMAL"), std::vector<Vector>(3, Vector(0, 0, -1)));
    EXPECT_EQ(cornersOf(primitive, "TEXCOORD")[2], Vector(0, 0));
    EXPECT_EQ(scene.warnings,
              Strings({"mesh 0 \"M\", primitive 0: 1 positions are not finite; what touches them is left out",
                       "mesh 0 \"M\", primitive 0: 1 normals have no direction; others are made for them"}));
}

TEST(GltfPrimitiveTest, warnsOfWhatItIgnores) {
    struct Case {
        const char* attributes;
        const char* primitive;
        std::size_t primitives;
        const char* warning;
    };
    const Case cases[] = {
        {R"(, "COLOR_0": 1)", "", 1, "its vertex colours, COLOR_0, are ignored"},
        {"", R"(, "targets": [{"POSITION": 0}])", 1,
         "its morph targets are ignored; it is drawn in its base shape"},
        {"", R"(, "material": 0)", 1, "its material reads textures with TEXCOORD_0, which it does not have"},
        {"", R"(, "mode": 7)", 0, "its mode 7 is none of glTF; it is left out"},
        {"", R"(, "mode": 4, "indices": 2)", 0, "it draws nothing and is left out"},
    };
    for (const Case& row : cases) {
        GltfBuilder file = makePatch(row.attributes, row.primitive);
        file.addFloats("VEC4", std::vector<float>(24));
        file.add<std::uint8_t>({0, 1}, "SCALAR", UINT8);
        file.members +=
            R"(, "images": [{"bufferView": )" + std::to_string(file.addView(makePng())) +
            R"(}], "textures": [{"source": 0}], "materials": [{"emissiveTexture": {"index": 0}}])";
        const GltfScene scene = decodeWhole(file);
        EXPECT_EQ(scene.meshes.at(0).primitives.size(), row.primitives) << row.warning;
        EXPECT_EQ(scene.warnings, Strings({std::string("mesh 0, primitive 0: ") + row.warning}));
    }
    GltfBuilder file;
    file.members = R"("meshes": [{"primitives": [{"attributes": {}}, 5]}])";
    const GltfScene scene = decodeWhole(file);
    EXPECT_TRUE(scene.meshes.at(0).primitives.empty());
    EXPECT_EQ(scene.warnings, Strings({"mesh 0, primitive 0: it has no positions and is left out",
                                       "mesh 0, primitive 1: it has no positions and is left out"}));
}

TEST(GltfPrimitiveTest, refusesWhatContradictsTheFile) {
    struct Case {
        const char* attributes;
        const char* primitive;
        const char* error;
    };
    const Case cases[] = {
        {R"(, "NORMAL": 1)", "", "NORMAL (accessor 1) has 2 values, but POSITION has 6"},
        {R"(, "TEXCOORD_0": 1)", "", "accessor 1: its type is \"VEC3\", expected VEC2"},
        {"", R"(, "indices": 2)", "index 1 of accessor 2 is 6, but there are 6 vertices"},
        {"", R"(, "indices": 3)", "'indices' is 3, but the file has 3 accessors"},
        {"", R"(, "indices": 0)",
         "accessor 0 holds indices, so its component type must be 5121, 5123 or 5125; it is 5126"},
        {"", R"(, "material": 0)", "'material' is 0, but the file has 0 materials"},
        {R"(, "NORMAL": 9)", "", "'NORMAL' is 9, but the file has 3 accessors"},
    };
    for (const Case& row : cases) {
        GltfBuilder file = makePatch(row.attributes, row.primitive);
        file.addFloats("VEC3", std::vector<float>(6));
        file.add<std::uint8_t>({0, 6, 1}, "SCALAR", UINT8);
        const std::string error = errorOf(file);
        EXPECT_EQ(error.rfind("mesh 0, primitive 0", 0), 0u) << error;
        EXPECT_TRUE(error.ends_with(row.error)) << error;
    }
}

TEST(GltfPrimitiveTest, namesTheCompressionThatItCannotRead) {
    GltfBuilder file;
    file.addAccessor(R"({"componentType": 5126, "type": "VEC3", "count": 3})");
    file.members = R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "extensions":
                      {"KHR_draco_mesh_compression": {"bufferView": 0, "attributes": {}}}}]}])";
    EXPECT_EQ(errorOf(file),
              "mesh 0, primitive 0: it is compressed by KHR_draco_mesh_compression, which cannot be read");
}
