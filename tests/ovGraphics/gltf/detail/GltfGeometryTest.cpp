#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>
#include <ovGraphics/gltf/detail/GltfGeometry.h>
#include <support/Numbers.h>

using namespace ovGraphics;
using namespace ovGraphics::detail;
using ovMaths::Vector;
using Indices = ovMemory::Buffer<std::uint32_t>;

namespace {

// Lengths of a few products and sums.
constexpr float FEW_ROUNDINGS = 1e-6f;

// Unit square in the plane z = 0, two triangles, counter-clockwise seen from +z.
GltfGeometry makeSquare() {
    GltfGeometry geometry;
    geometry.positions = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    geometry.indices = {0, 1, 2, 0, 2, 3};
    return geometry;
}

} // namespace

TEST(GltfGeometryTest, makesListsOfEveryMode) {
    struct Case {
        GLTF_MODE mode;
        Indices indices;
        PRIMITIVE_TOPOLOGY topology;
        Indices expected;
    };
    using enum GLTF_MODE;
    const Case cases[] = {
        {POINTS, {3, 1}, PRIMITIVE_TOPOLOGY::POINTLIST, {3, 1}},
        {LINES, {0, 1, 2, 3, 4}, PRIMITIVE_TOPOLOGY::LINELIST, {0, 1, 2, 3}},
        {LINE_STRIP, {0, 1, 2}, PRIMITIVE_TOPOLOGY::LINESTRIP, {0, 1, 2}},
        {LINE_STRIP, {0}, PRIMITIVE_TOPOLOGY::LINESTRIP, {}},
        {LINE_LOOP, {0, 1, 2}, PRIMITIVE_TOPOLOGY::LINESTRIP, {0, 1, 2, 0}},
        {LINE_LOOP, {0}, PRIMITIVE_TOPOLOGY::LINESTRIP, {}},
        {TRIANGLES, {0, 1, 2, 3, 4}, PRIMITIVE_TOPOLOGY::TRIANGLELIST, {0, 1, 2}},
        {TRIANGLE_STRIP, {0, 1, 2, 3, 4}, PRIMITIVE_TOPOLOGY::TRIANGLELIST, {0, 1, 2, 1, 3, 2, 2, 3, 4}},
        // Parts joined by doubled indices.
        {TRIANGLE_STRIP, {0, 1, 2, 2, 3, 3, 4, 5}, PRIMITIVE_TOPOLOGY::TRIANGLELIST, {0, 1, 2, 3, 5, 4}},
        {TRIANGLE_STRIP, {0, 1}, PRIMITIVE_TOPOLOGY::TRIANGLELIST, {}},
        {TRIANGLE_FAN, {0, 1, 2, 3}, PRIMITIVE_TOPOLOGY::TRIANGLELIST, {1, 2, 0, 2, 3, 0}},
        {TRIANGLE_FAN, {}, PRIMITIVE_TOPOLOGY::TRIANGLELIST, {}},
    };
    for (const Case& row : cases) {
        GltfGeometry geometry;
        geometry.indices = row.indices;
        setGltfTopology(row.mode, geometry);
        EXPECT_EQ(geometry.topology, row.topology);
        EXPECT_EQ(geometry.indices, row.expected) << int(row.mode);
    }
}

TEST(GltfGeometryTest, dropsWhatTouchesPositionsThatAreNotFinite) {
    struct Case {
        PRIMITIVE_TOPOLOGY topology;
        Indices indices;
        Indices expected; // vertices 1 and 5 are bad
    };
    using enum PRIMITIVE_TOPOLOGY;
    const Case cases[] = {
        {POINTLIST, {0, 1, 2, 5}, {0, 2}},
        {LINELIST, {0, 1, 2, 3, 5, 4}, {2, 3}},
        {LINESTRIP, {0, 1, 2, 3}, {0, 2, 3}},
        {TRIANGLELIST, {0, 1, 2, 2, 3, 4, 3, 4, 5}, {2, 3, 4}},
    };
    for (const Case& row : cases) {
        GltfGeometry geometry;
        geometry.positions = {{0, 0, 0}, {NOT_A_NUMBER, 1, 1}, {2, 2, 2}, {3, 3, 3},
                              {4, 4, 4}, {5, INFINITE, 5}};
        geometry.indices = row.indices;
        geometry.topology = row.topology;
        EXPECT_EQ(dropNonFinitePositions(geometry), 2u);
        EXPECT_EQ(geometry.indices, row.expected) << int(row.topology);
        EXPECT_EQ(geometry.positions[1], Vector());
        EXPECT_EQ(geometry.positions[5], Vector());
        EXPECT_EQ(dropNonFinitePositions(geometry), 0u);
    }
}

TEST(GltfGeometryTest, splitsAllValuesOfACorner) {
    GltfGeometry geometry = makeSquare();
    geometry.uvs = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
    splitGltfCorners(geometry);
    EXPECT_EQ(geometry.indices, Indices({0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(geometry.positions,
              ovMemory::Buffer<Vector>({Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 1, 0), Vector(0, 0, 0),
                                        Vector(1, 1, 0), Vector(0, 1, 0)}));
    EXPECT_EQ(geometry.uvs[4], Vector(1, 0));
    EXPECT_EQ(geometry.uvs.size(), 6u);
    EXPECT_TRUE(geometry.normals.empty());
}

TEST(GltfGeometryTest, makesFlatNormalsThatLookOutOfCounterClockwiseFaces) {
    GltfGeometry geometry = makeSquare();
    geometry.positions[3] = {0, 0, 5}; // the second triangle stands up
    splitGltfCorners(geometry);
    makeFlatNormals(geometry);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(geometry.normals[i], Vector(0, 0, 1)) << i;
    const float half = 0.70710678f;
    for (std::size_t i = 3; i < 6; ++i)
        EXPECT_LT((geometry.normals[i] - Vector(half, -half, 0)).getLengthVec3(), FEW_ROUNDINGS) << i;
    geometry.positions.assign(6, Vector());
    makeFlatNormals(geometry);
    EXPECT_EQ(geometry.normals, ovMemory::Buffer<Vector>(6, Vector(0, 0, 1)));
}

TEST(GltfGeometryTest, repairsNormals) {
    GltfGeometry geometry = makeSquare();
    geometry.positions[3] = {0, 0, 5};
    geometry.normals = {{0, 0, 0}, {0, 3, 0}, {NOT_A_NUMBER, 0, 0}, {INFINITE, 0, 0}};
    EXPECT_EQ(repairNormals(geometry), 3u);
    // Planes by area: (0, 0, 1) and (5, -5, 0).
    const Vector mean = Vector(5, -5, 1).getNormalizedVec3();
    EXPECT_LT((geometry.normals[0] - mean).getLengthVec3(), FEW_ROUNDINGS);
    EXPECT_EQ(geometry.normals[1], Vector(0, 1, 0));
    EXPECT_LT((geometry.normals[2] - mean).getLengthVec3(), FEW_ROUNDINGS);
    EXPECT_LT((geometry.normals[3] - Vector(5, -5, 0).getNormalizedVec3()).getLengthVec3(), FEW_ROUNDINGS);
    EXPECT_EQ(repairNormals(geometry), 0u);
    geometry.topology = PRIMITIVE_TOPOLOGY::POINTLIST;
    geometry.normals.assign(4, Vector());
    EXPECT_EQ(repairNormals(geometry), 4u);
    EXPECT_EQ(geometry.normals[0], Vector(0, 0, 1));
}

TEST(GltfGeometryTest, findsPerpendiculars) {
    for (const Vector& direction : {Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, -1), Vector(0.6f, 0.8f, 0),
                                    Vector(1, 1, 1).getNormalizedVec3()}) {
        const Vector across = perpendicularTo(direction);
        EXPECT_NEAR(across.getLengthVec3(), 1.0f, FEW_ROUNDINGS);
        EXPECT_NEAR(Vector::dotVec3(across, direction), 0.0f, FEW_ROUNDINGS);
    }
}

TEST(GltfGeometryTest, packsInTheSpaceOfTheLibrary) {
    GltfGeometry geometry = makeSquare();
    geometry.positions[2].z = 3;
    geometry.normals.assign(4, {0, 0, 1});
    geometry.uvs = {{0, 1}, {1, 1}, {NOT_A_NUMBER, 0}, {0, 0}};
    geometry.tangents = {{1, 0, 0, 1}, {1, 0, 0, -1}, {0, 0, 0, 1}, {0, 0, 5, 1}};
    GltfPrimitive primitive;
    packGltfGeometry(geometry, primitive);
    EXPECT_EQ(primitive.composition.getStride(), 56u);
    EXPECT_EQ(primitive.vertexCount, 4u);
    EXPECT_EQ(primitive.vertices.size(), 4u * 56u);
    EXPECT_EQ(primitive.indices, Indices({0, 2, 1, 0, 3, 2}));
    EXPECT_EQ(valuesOf(primitive, "POSITION")[2], Vector(1, 1, -3));
    EXPECT_EQ(valuesOf(primitive, "NORMAL")[0], Vector(0, 0, -1));
    EXPECT_EQ(valuesOf(primitive, "TEXCOORD")[1], Vector(1, 1));
    EXPECT_EQ(valuesOf(primitive, "TEXCOORD")[2], Vector(0, 0));
    // In the file's space: cross(z, x) = y, and its opposite where the sign is -1.
    EXPECT_EQ(valuesOf(primitive, "TANGENT")[0], Vector(1, 0, 0));
    EXPECT_EQ(valuesOf(primitive, "BINORMAL")[0], Vector(0, 1, 0));
    EXPECT_EQ(valuesOf(primitive, "BINORMAL")[1], Vector(0, -1, 0));
    // Tangents that are zero or along the normal are replaced.
    for (const std::size_t i : {2u, 3u}) {
        const Vector tangent = valuesOf(primitive, "TANGENT")[i];
        const Vector binormal = valuesOf(primitive, "BINORMAL")[i];
        EXPECT_NEAR(tangent.getLengthVec3(), 1.0f, FEW_ROUNDINGS);
        EXPECT_NEAR(binormal.getLengthVec3(), 1.0f, FEW_ROUNDINGS);
        EXPECT_EQ(tangent.z, 0.0f);
        EXPECT_EQ(binormal.z, 0.0f);
        EXPECT_NEAR(Vector::dotVec3(tangent, binormal), 0.0f, FEW_ROUNDINGS);
    }
    EXPECT_EQ(primitive.boundingBox.getMinimum(), Vector(0, 0, -3));
    EXPECT_EQ(primitive.boundingBox.getMaximum(), Vector(1, 1, 0));
}

TEST(GltfGeometryTest, leavesOutIndicesThatOnlyCount) {
    GltfGeometry geometry = makeSquare();
    geometry.topology = PRIMITIVE_TOPOLOGY::POINTLIST;
    geometry.indices = {0, 1, 2, 3};
    GltfPrimitive counting;
    packGltfGeometry(geometry, counting);
    EXPECT_TRUE(counting.indices.empty());
    EXPECT_EQ(counting.composition.getStride(), 12u);
    geometry.indices = {0, 1, 3};
    GltfPrimitive choosing;
    packGltfGeometry(geometry, choosing);
    EXPECT_EQ(choosing.indices, geometry.indices);
    // What is not drawn takes no room.
    EXPECT_EQ(choosing.boundingBox.getMaximum(), Vector(1, 1, 0));
}

TEST(GltfGeometryTest, packsEqualVerticesAsEqualBytes) {
    GltfGeometry geometry;
    geometry.positions = {{0, 0, 0}, {-0.0f, -0.0f, -0.0f}};
    geometry.indices = {0, 1};
    geometry.topology = PRIMITIVE_TOPOLOGY::POINTLIST;
    GltfPrimitive primitive;
    packGltfGeometry(geometry, primitive);
    EXPECT_TRUE(std::equal(primitive.vertices.begin(), primitive.vertices.begin() + 12,
                           primitive.vertices.begin() + 12));
}
