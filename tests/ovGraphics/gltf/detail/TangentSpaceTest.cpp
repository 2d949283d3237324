#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/detail/TangentSpace.h>
#include <ovMaths/MathConstants.h>
#include <support/Numbers.h>

using namespace ovGraphics::detail;
using ovMaths::Vector;

namespace {

// A triangle or a few of them, exact but for normalising.
constexpr float TANGENT_ROUNDINGS = 1e-5f;

struct Corner {
    Vector position;
    Vector uv;
};

// Split triangles in the plane z = 0 that look along +z.
GltfGeometry makeFlat(const std::vector<Corner>& corners) {
    GltfGeometry geometry;
    for (const Corner& corner : corners) {
        geometry.indices.push_back(std::uint32_t(geometry.positions.size()));
        geometry.positions.push_back(corner.position);
        geometry.uvs.push_back(corner.uv);
        geometry.normals.push_back({0, 0, 1});
    }
    return geometry;
}

void expectTangent(const Vector& tangent, const Vector& expected, const std::string& what) {
    EXPECT_LT((tangent - expected).getLengthVec4(), TANGENT_ROUNDINGS) << what << ' ' << tangent.toString();
}

// A point of the unit sphere, u around and v from the north pole down.
Vector onSphere(float u, float v) {
    const float longitude = u * ovMaths::MathConstants::PI_2;
    const float latitude = v * ovMaths::MathConstants::PI;
    return {std::sin(latitude) * std::cos(longitude), std::cos(latitude),
            -std::sin(latitude) * std::sin(longitude)};
}

} // namespace

TEST(TangentSpaceTest, followsTheMappingOfAPlane) {
    struct Case {
        const char* name;
        Vector uvs[3]; // of (0, 0), (1, 0), (0, 1)
        Vector expected;
    };
    // v runs down, so the picture stands upright where v falls along +y.
    const Case cases[] = {
        {"upright", {{0, 1}, {1, 1}, {0, 0}}, {1, 0, 0, 1}},
        {"scaled and moved", {{7, 5}, {9, 5}, {7, 2}}, {1, 0, 0, 1}},
        {"a quarter turn", {{1, 1}, {1, 0}, {0, 1}}, {0, -1, 0, 1}},
        {"half a turn", {{1, 0}, {0, 0}, {1, 1}}, {-1, 0, 0, 1}},
        {"mirrored in u", {{1, 1}, {0, 1}, {1, 0}}, {-1, 0, 0, -1}},
        {"mirrored in v", {{0, 0}, {1, 0}, {0, 1}}, {1, 0, 0, -1}},
        // v stays the same along (1, -1) only.
        {"sheared", {{0, 1}, {1, 0}, {0, 0}}, {0.70710678f, -0.70710678f, 0, 1}},
    };
    for (const Case& row : cases) {
        GltfGeometry geometry =
            makeFlat({{{0, 0, 0}, row.uvs[0]}, {{1, 0, 0}, row.uvs[1]}, {{0, 1, 0}, row.uvs[2]}});
        makeTangents(geometry);
        ASSERT_EQ(geometry.tangents.size(), 3u);
        for (const Vector& tangent : geometry.tangents)
            expectTangent(tangent, row.expected, row.name);
    }
}

TEST(TangentSpaceTest, keepsMirroredHalvesApart) {
    // Two triangles share an edge with equal texture coordinates; the right one is the mirror of the left
    // one.
    const Corner bottom{{0, 0, 0}, {1, 1}};
    const Corner top{{0, 1, 0}, {1, 0}};
    GltfGeometry geometry = makeFlat({{{-1, 0, 0}, {0, 1}}, bottom, top, bottom, {{1, 0, 0}, {0, 1}}, top});
    makeTangents(geometry);
    for (std::size_t i = 0; i < 3; ++i)
        expectTangent(geometry.tangents[i], {1, 0, 0, 1}, "left");
    for (std::size_t i = 3; i < 6; ++i)
        expectTangent(geometry.tangents[i], {-1, 0, 0, -1}, "right");
}

TEST(TangentSpaceTest, weightsByAngle) {
    // Around the origin: a right angle whose u grows along x, and one of 45 degrees whose u grows along y.
    // Their texture coordinates are equal where they meet; neither is mirrored.
    const Corner origin{{0, 0, 0}, {0, 0}};
    GltfGeometry geometry = makeFlat({origin,
                                      {{1, 0, 0}, {1, 0}},
                                      {{0, 1, 0}, {0, -1}},
                                      origin,
                                      {{0, 1, 0}, {1, 0}},
                                      {{-1, 1, 0}, {1, -1}}});
    makeTangents(geometry);
    const Vector first(1, 0, 0);
    const Vector second(0, 1, 0);
    Vector expected = (first * 2.0f + second).getNormalizedVec3();
    expected.w = 1.0f;
    expectTangent(geometry.tangents[0], expected, "shared");
    expectTangent(geometry.tangents[3], expected, "shared");
    expectTangent(geometry.tangents[1], {1, 0, 0, 1}, "first alone");
    expectTangent(geometry.tangents[4], {0, 1, 0, 1}, "second alone");
}

TEST(TangentSpaceTest, splitsWhereNormalsOrTextureCoordinatesDiffer) {
    const Corner origin{{0, 0, 0}, {0, 0}};
    GltfGeometry geometry = makeFlat({origin,
                                      {{1, 0, 0}, {1, 0}},
                                      {{0, 1, 0}, {0, -1}},
                                      {{0, 0, 0}, {5, 5}},
                                      {{0, 1, 0}, {6, 5}},
                                      {{-1, 0, 0}, {5, 4}}});
    makeTangents(geometry);
    expectTangent(geometry.tangents[0], {1, 0, 0, 1}, "first");
    expectTangent(geometry.tangents[3], {0, 1, 0, 1}, "second");
}

TEST(TangentSpaceTest, followsTheParallelsOfASphere) {
    constexpr int RINGS = 16;
    constexpr int SECTORS = 32;
    GltfGeometry geometry;
    const auto add = [&](int sector, int ring) {
        const float u = float(sector) / SECTORS;
        const float v = float(ring) / RINGS;
        geometry.indices.push_back(std::uint32_t(geometry.positions.size()));
        geometry.positions.push_back(onSphere(u, v));
        geometry.normals.push_back(onSphere(u, v).getNormalizedVec3());
        geometry.uvs.push_back({u, v});
    };
    for (int ring = 1; ring + 1 < RINGS; ++ring)
        for (int sector = 0; sector < SECTORS; ++sector)
            for (const auto& [right, down] : {std::pair(0, 0), {0, 1}, {1, 1}, {0, 0}, {1, 1}, {1, 0}})
                add(sector + right, ring + down);
    makeTangents(geometry);
    for (std::size_t i = 0; i < geometry.positions.size(); ++i) {
        const float longitude = geometry.uvs[i].x * ovMaths::MathConstants::PI_2;
        const Vector parallel(-std::sin(longitude), 0, -std::cos(longitude));
        const Vector& tangent = geometry.tangents[i];
        EXPECT_NEAR(Vector::dotVec3(tangent, geometry.normals[i]), 0.0f, TANGENT_ROUNDINGS);
        EXPECT_EQ(tangent.w, 1.0f);
        // At the seam and at the first and last ring a corner has triangles on one side only, whose
        // directions are half a sector (5.6 degrees) off; elsewhere they cancel out but for the unlike sizes
        // of triangles.
        const bool isBorder = geometry.uvs[i].x == 0.0f || geometry.uvs[i].x == 1.0f;
        EXPECT_GT(Vector::dotVec3(tangent, parallel), isBorder ? 0.98f : 0.995f) << i;
        const Vector north = Vector::crossVec3(geometry.normals[i], tangent);
        EXPECT_GT(north.y, 0.0f) << i;
    }
}

TEST(TangentSpaceTest, takesOverTangentsWhereTheMappingHasNoArea) {
    const Corner bottom{{1, 0, 0}, {1, 1}};
    const Corner top{{0, 1, 0}, {0, 0}};
    // The second triangle has the texture coordinates of the shared edge only.
    GltfGeometry geometry = makeFlat({{{0, 0, 0}, {0, 1}}, bottom, top, bottom, {{1, 1, 0}, {0, 0}}, top});
    makeTangents(geometry);
    expectTangent(geometry.tangents[3], {1, 0, 0, 1}, "shared bottom");
    expectTangent(geometry.tangents[5], {1, 0, 0, 1}, "shared top");
    EXPECT_NEAR(geometry.tangents[4].getLengthVec3(), 1.0f, TANGENT_ROUNDINGS);
    EXPECT_EQ(geometry.tangents[4].z, 0.0f);
    EXPECT_EQ(geometry.tangents[4].w, 1.0f);
    // Of a mirrored neighbour too.
    GltfGeometry mirrored = makeFlat({{{0, 0, 0}, {2, 1}}, bottom, top, bottom, {{1, 1, 0}, {0, 0}}, top});
    makeTangents(mirrored);
    EXPECT_EQ(mirrored.tangents[3], mirrored.tangents[1]);
    EXPECT_EQ(mirrored.tangents[3].w, mirrored.tangents[1].w);
}

TEST(TangentSpaceTest, givesSomeTangentToEveryCorner) {
    const std::vector<std::vector<Corner>> meshes = {
        {{{0, 0, 0}, {}}, {{1, 0, 0}, {}}, {{0, 1, 0}, {}}},
        {{{0, 0, 0}, {0, 0}}, {{0, 0, 0}, {1, 0}}, {{0, 0, 0}, {0, 1}}},
        {{{0, 0, 0}, {0, 0}}, {{1, 0, 0}, {1, 1}}, {{2, 0, 0}, {2, 2}}},
        {{{0, 0, 0}, {NOT_A_NUMBER, 0}}, {{1, 0, 0}, {1, INFINITE}}, {{0, 1, 0}, {0, 1}}},
        {{{0, 0, 0}, {0, 0}}, {{3e38f, 0, 0}, {1, 0}}, {{-3e38f, 3e38f, 0}, {0, 1}}},
        {{{0, 0, 0}, {0, 0}}, {{1e-38f, 0, 0}, {1e-38f, 0}}, {{0, 1e-38f, 0}, {0, 1e-38f}}},
    };
    for (std::size_t mesh = 0; mesh < meshes.size(); ++mesh) {
        GltfGeometry geometry = makeFlat(meshes[mesh]);
        makeTangents(geometry);
        for (const Vector& tangent : geometry.tangents) {
            EXPECT_NEAR(tangent.getLengthVec3(), 1.0f, TANGENT_ROUNDINGS) << mesh;
            EXPECT_NEAR(tangent.z, 0.0f, TANGENT_ROUNDINGS) << mesh;
            EXPECT_EQ(std::abs(tangent.w), 1.0f) << mesh;
        }
    }
    GltfGeometry nothing;
    makeTangents(nothing);
    EXPECT_TRUE(nothing.tangents.empty());
}
