#include <veldris/demo/Terrain.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Mesh.h>
#include <veldris/SessionTesting.h>

using ovMaths::Vector;

TEST(TerrainTest, mountainsStandBesideAValley) {
    float inValley = 0.0f;
    float highest = 0.0f;
    for (float z = -1.0f; z <= 1.0f; z += 0.01f) {
        for (float x = -1.0f; x <= 1.0f; x += 0.01f) {
            const float height = veldris::terrainHeight(x, z);
            ASSERT_GE(height, 0.0f);
            ASSERT_LE(height, 1.0f);
            highest = std::max(highest, height);
        }
        inValley = std::max(inValley, veldris::terrainHeight(0.12f * std::sin(4.0f * z), z));
    }
    EXPECT_GT(highest, 0.6f);
    EXPECT_LT(inValley, 0.12f);
}

TEST(TerrainTest, normalsStandOnTheSlope) {
    constexpr float HEIGHT = 0.25f;
    const float steps[][2] = {{0.3f, -0.2f}, {-0.7f, 0.5f}, {0.01f, 0.9f}};
    for (const auto& [x, z] : steps) {
        const Vector normal = veldris::terrainNormal(x, z, HEIGHT);
        EXPECT_NEAR(normal.getLengthVec3(), 1.0f, 1e-5f);
        EXPECT_GT(normal.y, 0.0f);
        constexpr float STEP = 1e-3f;
        for (const Vector& along : {Vector(STEP, 0.0f, 0.0f), Vector(0.0f, 0.0f, STEP)}) {
            const float rise = veldris::terrainHeight(x + along.x, z + along.z) -
                               veldris::terrainHeight(x - along.x, z - along.z);
            const Vector tangent = Vector(2.0f * along.x, HEIGHT * rise, 2.0f * along.z).getNormalizedVec3();
            EXPECT_NEAR(tangent.dotProductVec3(normal), 0.0f, 0.02f) << x << " " << z;
        }
    }
}

TEST(TerrainTest, theMeshIsAGridOfTriangles) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    const auto mesh = veldris::makeTerrain(session.getGraphics(), 5, 4);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->getIndexCount(), 4u * 3u * 6u);
    const ovGraphics::BoundingBox& box = mesh->getBoundingBox();
    EXPECT_EQ(box.getMinimum().x, -1.0f);
    EXPECT_EQ(box.getMaximum().z, 1.0f);
    EXPECT_GE(box.getMinimum().y, 0.0f);
}
