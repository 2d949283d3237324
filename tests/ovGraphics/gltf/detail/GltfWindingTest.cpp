#include <array>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <ovGraphics/gltf/detail/GltfWinding.h>
#include <support/Numbers.h>

using namespace ovGraphics::detail;
using ovGraphics::GltfPrimitive;
using ovGraphics::GltfScene;
using ovMaths::Vector;

namespace {

// An octahedron, counter-clockwise seen from outside, with normals that look outwards.
GltfGeometry makeOctahedron(float scale = 1.0f, const Vector& center = {}) {
    GltfGeometry geometry;
    geometry.normals = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
    for (const Vector& normal : geometry.normals)
        geometry.positions.push_back(normal * scale + center);
    geometry.indices = {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5};
    return geometry;
}

void turnTrianglesOf(GltfGeometry& geometry, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        std::swap(geometry.indices[3 * i], geometry.indices[3 * i + 1]);
}

void turnNormalsOf(GltfGeometry& geometry) {
    for (Vector& normal : geometry.normals)
        normal = normal * -1.0f;
}

// Whether every triangle and every normal looks away from the center.
bool looksOutwards(const GltfGeometry& geometry, const Vector& center = {}) {
    for (std::size_t i = 0; i < geometry.indices.size(); i += 3) {
        const Vector a = geometry.positions[geometry.indices[i]];
        const Vector b = geometry.positions[geometry.indices[i + 1]];
        const Vector c = geometry.positions[geometry.indices[i + 2]];
        if (Vector::dotVec3(Vector::crossVec3(b - a, c - a), a - center) <= 0.0f)
            return false;
    }
    for (std::size_t i = 0; i < geometry.normals.size(); ++i)
        if (Vector::dotVec3(geometry.normals[i], geometry.positions[i] - center) <= 0.0f)
            return false;
    return true;
}

} // namespace

TEST(GltfWindingTest, countsTrianglesThatRunAgainstTheirNormals) {
    for (std::size_t turned = 0; turned <= 8; ++turned) {
        GltfGeometry geometry = makeOctahedron();
        turnTrianglesOf(geometry, turned);
        const GltfWinding winding = compareWinding(geometry);
        EXPECT_EQ(winding.triangles, 8u);
        EXPECT_EQ(winding.against, turned);
        EXPECT_EQ(winding.isAgainst(), turned >= 6) << turned; // two thirds of eight are 5.3
    }
    EXPECT_TRUE((GltfWinding{3, 2}.isAgainst()));
    EXPECT_FALSE((GltfWinding{300, 199}.isAgainst()));
    EXPECT_FALSE(GltfWinding().isAgainst());
}

TEST(GltfWindingTest, whatTellsNoSideIsNotCounted) {
    GltfGeometry geometry;
    geometry.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 0, 0}};
    geometry.normals = {{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {0, 0, -1}};
    geometry.indices = {0, 1, 1, 0, 1, 3, 2, 2, 2}; // nothing has an area
    EXPECT_EQ(compareWinding(geometry).triangles, 0u);
    geometry.indices = {0, 1, 2};
    EXPECT_EQ(compareWinding(geometry).against, 1u);
    // Grass: normals along the blade, a little to the wrong side by rounding.
    geometry.normals.assign(4, Vector(0, 0.999f, -0.01f).getNormalizedVec3());
    EXPECT_EQ(compareWinding(geometry).triangles, 1u);
    EXPECT_EQ(compareWinding(geometry).against, 0u);
    geometry.normals.assign(4, {});
    EXPECT_EQ(compareWinding(geometry).against, 0u);
    geometry.normals.assign(4, {NOT_A_NUMBER, 0, 0});
    EXPECT_EQ(compareWinding(geometry).against, 0u);
    geometry.normals.clear();
    EXPECT_EQ(compareWinding(geometry).triangles, 0u);
    geometry.normals.assign(4, {0, 0, -1});
    geometry.topology = ovGraphics::PRIMITIVE_TOPOLOGY::LINESTRIP;
    EXPECT_EQ(compareWinding(geometry).triangles, 0u);
    EXPECT_EQ(compareWinding({}).triangles, 0u);
}

TEST(GltfWindingTest, turnsWhatIsWrongOfAClosedSurface) {
    for (const float scale : {1e-15f, 1e-4f, 1.0f, 1e15f}) {
        const Vector center(2.0f * scale, -3.0f * scale, 5.0f * scale);
        GltfGeometry wound = makeOctahedron(scale, center);
        turnTrianglesOf(wound, 8);
        EXPECT_EQ(compareWinding(wound).against, 8u) << scale;
        const auto normals = wound.normals;
        repairWinding(wound);
        EXPECT_TRUE(looksOutwards(wound, center)) << scale;
        EXPECT_EQ(wound.normals, normals);

        GltfGeometry inward = makeOctahedron(scale, center);
        turnNormalsOf(inward);
        inward.tangents.assign(6, {0.6f, 0.8f, 0, 1});
        const auto indices = inward.indices;
        EXPECT_EQ(compareWinding(inward).against, 8u) << scale;
        repairWinding(inward);
        EXPECT_TRUE(looksOutwards(inward, center)) << scale;
        EXPECT_EQ(inward.indices, indices);
        for (const Vector& tangent : inward.tangents)
            EXPECT_EQ(tangent, Vector(0.6f, 0.8f, 0, -1)) << "the bitangent stays";
    }
}

TEST(GltfWindingTest, aSmallHoleLeavesASurfaceClosed) {
    GltfGeometry geometry = makeOctahedron();
    geometry.indices.resize(21);
    turnNormalsOf(geometry);
    const auto indices = geometry.indices;
    repairWinding(geometry);
    EXPECT_TRUE(looksOutwards(geometry));
    EXPECT_EQ(geometry.indices, indices);
}

TEST(GltfWindingTest, believesTheNormalsOfWhatIsOpen) {
    // An octahedron without two faces that meet; a half of one; a closed sheet of two sides that encloses
    // nothing.
    GltfGeometry open = makeOctahedron();
    open.indices.resize(18);
    GltfGeometry half = makeOctahedron();
    half.indices.resize(12);
    GltfGeometry sheet;
    sheet.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    sheet.normals = {{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
    sheet.indices = {0, 2, 1, 3, 4, 5};
    for (GltfGeometry geometry : {open, half, sheet}) {
        turnNormalsOf(geometry);
        const auto normals = geometry.normals;
        ASSERT_TRUE(compareWinding(geometry).isAgainst());
        repairWinding(geometry);
        EXPECT_EQ(geometry.normals, normals);
        EXPECT_EQ(compareWinding(geometry).against, 0u);
    }
    GltfGeometry empty;
    repairWinding(empty);
    EXPECT_TRUE(empty.indices.empty());
}

namespace {

// An octahedron as a file. @param order of a triangle's corners, for each of the primitives
GltfBuilder makeSolidFile(const std::vector<std::array<int, 3>>& primitives, const std::string& node,
                          const std::string& rest = "", const std::string& attributes = "") {
    const GltfGeometry solid = makeOctahedron();
    std::vector<float> positions;
    for (const Vector& position : solid.positions)
        positions.insert(positions.end(), {position.x, position.y, position.z});
    GltfBuilder file;
    const std::string values = std::to_string(file.addFloats("VEC3", positions));
    std::string list;
    for (const auto& order : primitives) {
        std::vector<std::uint16_t> indices;
        for (std::size_t i = 0; i < solid.indices.size(); i += 3)
            for (const int corner : order)
                indices.push_back(static_cast<std::uint16_t>(solid.indices[i + std::size_t(corner)]));
        list += (list.empty() ? "" : ", ") + (R"({"attributes": {"POSITION": )" + values) +
                ", \"NORMAL\": " + values + attributes +
                "}, \"indices\": " + std::to_string(file.add(indices, "SCALAR", UINT16)) + "}";
    }
    file.members =
        R"("meshes": [{"name": "Gem", "primitives": [)" + list + R"(]}], "nodes": [)" + node + "]" + rest;
    return file;
}

constexpr std::array<int, 3> RIGHT{0, 1, 2};
constexpr std::array<int, 3> WRONG{0, 2, 1};

// Seen from outside, front faces run clockwise here: their cross product looks outwards in a space that is
// left-handed.
void expectOutside(const GltfPrimitive& primitive) {
    const auto corners = cornersOf(primitive, "POSITION");
    const auto normals = cornersOf(primitive, "NORMAL");
    ASSERT_EQ(corners.size(), 24u);
    for (std::size_t i = 0; i < corners.size(); i += 3) {
        const Vector side = Vector::crossVec3(corners[i + 1] - corners[i], corners[i + 2] - corners[i]);
        EXPECT_GT(Vector::dotVec3(side, corners[i]), 0.0f) << i;
        for (std::size_t corner = i; corner < i + 3; ++corner)
            EXPECT_GT(Vector::dotVec3(normals[corner], corners[corner]), 0.99f) << corner;
    }
}

} // namespace

TEST(GltfWindingTest, filesAreDrawnRightSideOutWithOneLine) {
    struct Case {
        const char* name;
        std::vector<std::array<int, 3>> primitives;
        Strings warnings;
    };
    const Case cases[] = {
        {"right", {RIGHT}, {}},
        {"wrong",
         {WRONG},
         {"mesh 0 \"Gem\": 8 of its 8 triangles are wound against their normals; it is drawn right side "
          "out"}},
        {"all wrong",
         {WRONG, WRONG, WRONG},
         {"mesh 0 \"Gem\": 24 of its 24 triangles are wound against their normals; it is drawn right side "
          "out"}},
        {"one wrong",
         {RIGHT, WRONG, RIGHT},
         {"mesh 0 \"Gem\": 8 of its 24 triangles are wound against their normals; it is drawn right side "
          "out"}},
    };
    for (const Case& row : cases) {
        for (const bool optimize : {false, true}) {
            ovGraphics::GltfDecodeOptions options;
            options.optimizeMeshes = optimize;
            const GltfScene scene = decodeWhole(makeSolidFile(row.primitives, R"({"mesh": 0})"), options);
            EXPECT_EQ(scene.warnings, row.warnings) << row.name;
            ASSERT_EQ(scene.meshes.at(0).primitives.size(), row.primitives.size());
            for (const GltfPrimitive& primitive : scene.meshes[0].primitives)
                expectOutside(primitive);
        }
    }
}

TEST(GltfWindingTest, aFewOddTrianglesStayAsTheyAre) {
    GltfBuilder file = makeSolidFile({RIGHT}, R"({"mesh": 0})");
    // Five of eight, one more than half: too few to say that the file means the other side.
    GltfGeometry odd = makeOctahedron();
    turnTrianglesOf(odd, 5);
    const std::string given = "\"indices\": 1";
    const std::string own =
        "\"indices\": " +
        std::to_string(
            file.add(std::vector<std::uint32_t>(odd.indices.begin(), odd.indices.end()), "SCALAR", UINT32));
    file.members.replace(file.members.find(given), given.size(), own);
    ovGraphics::GltfDecodeOptions options;
    options.optimizeMeshes = false;
    const GltfScene scene = decodeWhole(file, options);
    EXPECT_EQ(scene.warnings, Strings());
    std::size_t inwards = 0;
    const auto corners = cornersOf(scene.meshes.at(0).primitives.at(0), "POSITION");
    for (std::size_t i = 0; i < corners.size(); i += 3)
        inwards +=
            Vector::dotVec3(Vector::crossVec3(corners[i + 1] - corners[i], corners[i + 2] - corners[i]),
                            corners[i]) < 0.0f
                ? 1
                : 0;
    EXPECT_EQ(inwards, 5u);
}

TEST(GltfWindingTest, mirroringNodesTurnNothing) {
    // One mesh at a mirroring node and at one that does not: the node turns the winding, not the mesh.
    const GltfScene scene =
        decodeWhole(makeSolidFile({RIGHT}, R"({"mesh": 0, "scale": [-1, 1, 1]}, {"mesh": 0})"));
    EXPECT_EQ(scene.warnings, Strings());
    EXPECT_LT(scene.nodes.at(0).world.getDeterminantMat3(), 0.0f);
    expectOutside(scene.meshes.at(0).primitives.at(0));
}

TEST(GltfWindingTest, mirroringJointsAreNoFaultOfTheFile) {
    struct Case {
        const char* joint;
        std::array<int, 3> order;
        Strings warnings; ///< beside that of the skin
    };
    const Case cases[] = {
        {R"({"scale": [-1, 1, 1]})", RIGHT, {}},
        {R"({"scale": [1, 1, 1]})", RIGHT, {}},
        {R"({"scale": [1, 1, 1]})",
         WRONG,
         {"mesh 0 \"Gem\": 8 of its 8 triangles are wound against their normals; it is drawn right side "
          "out"}},
    };
    for (const Case& row : cases) {
        GltfBuilder file =
            makeSolidFile({row.order}, std::string(R"({"mesh": 0, "skin": 0}, )") + row.joint,
                          R"(, "skins": [{"joints": [1]}])", R"(, "JOINTS_0": 2, "WEIGHTS_0": 3)");
        file.add<std::uint8_t>(std::vector<std::uint8_t>(24), "VEC4", UINT8);
        std::vector<float> weights(24);
        for (std::size_t i = 0; i < weights.size(); i += 4)
            weights[i] = 1.0f;
        file.addFloats("VEC4", weights);
        const GltfScene scene = decodeWhole(file);
        Strings warnings = row.warnings;
        warnings.insert(warnings.begin(), "skin 0: it is drawn in its rest pose; it does not move");
        EXPECT_EQ(scene.warnings, warnings) << row.joint;
        expectOutside(scene.meshes.at(0).primitives.at(0));
    }
}
