#include <veldris/demo/SurfaceMesh.h>

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Mesh.h>
#include <veldris/SessionTesting.h>
#include <veldris/demo/SurfaceVertices.h>

namespace {

using ovMaths::Vector;
using ovMemory::Buffer;

class SurfaceMeshTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    veldris::Session _session;
};

/// A ball's surface, its outside where u's and v's directions have their cross product.
Vector onBall(float u, float v) {
    const float longitude = 2.0f * std::numbers::pi_v<float> * u;
    const float latitude = 0.9f * std::numbers::pi_v<float> * (v - 0.5f);
    return Vector(std::cos(latitude) * std::cos(longitude), std::cos(latitude) * std::sin(longitude),
                  std::sin(latitude)) *
           3.0f;
}

TEST_F(SurfaceMeshTest, normalsOfABallPointAwayFromItsMiddle) {
    veldris::SurfaceMesh surface;
    surface.addGrid(33, 17, onBall);
    const auto mesh = surface.make(_session.getGraphics(), "ball");
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->getName(), "ball");
    EXPECT_EQ(mesh->getIndexCount(), 32u * 16u * 6u);
    const Buffer<Vector> vertices = surfaceVertices(*mesh);
    ASSERT_EQ(vertices.size(), 33u * 17u * 3u);
    for (std::size_t i = 0; i < vertices.size(); i += 3)
        EXPECT_NEAR(vertices[i].getNormalizedVec3().dotProductVec3(vertices[i + 1]), 1.0f, 0.01f) << i / 3;
    EXPECT_EQ(vertices[3 * (33 * 17 - 1) + 2].x, 1.0f) << "texture coordinates end at 1";
    EXPECT_EQ(vertices[3 * (33 * 17 - 1) + 2].y, 1.0f);
}

// In left-handed space what turns clockwise for an eye has its normal, by the same cross product, towards the
// eye.
TEST_F(SurfaceMeshTest, trianglesTurnClockwiseAsSeenFromOutside) {
    veldris::SurfaceMesh surface;
    surface.addGrid(9, 9, onBall);
    const auto mesh = surface.make(_session.getGraphics(), "ball");
    ASSERT_TRUE(mesh);
    const Buffer<Vector> vertices = surfaceVertices(*mesh);
    const auto& indices = mesh->getCurrentIndexArray();
    for (std::size_t i = 0; i < indices.size(); i += 3) {
        const Vector a = vertices[3 * indices[i]];
        const Vector b = vertices[3 * indices[i + 1]];
        const Vector c = vertices[3 * indices[i + 2]];
        EXPECT_GT(Vector::crossVec3(b - a, c - a).dotProductVec3(a + b + c), 0.0f) << i / 3;
    }
}

TEST_F(SurfaceMeshTest, piecesFollowEachOther) {
    veldris::SurfaceMesh surface;
    surface.addGrid(2, 2, [](float u, float v) { return Vector(u, v, 0.0f); });
    const std::array<veldris::SurfaceCorner, 3> corners = {{{{5.0f, 0.0f, 0.0f}, {}, {}},
                                                            {{6.0f, 0.0f, 0.0f}, {}, {}},
                                                            {{7.0f, 0.0f, 0.0f}, {}, {0.25f, 0.75f}}}};
    const std::array<uint32_t, 3> triangle = {2, 1, 0};
    surface.addTriangles(corners, triangle);
    const auto mesh = surface.make(_session.getGraphics(), "pieces");
    ASSERT_TRUE(mesh);
    const auto& indices = mesh->getCurrentIndexArray();
    ASSERT_EQ(indices.size(), 9u);
    EXPECT_EQ(indices[6], 6u) << "behind the four corners of the grid";
    const Buffer<Vector> vertices = surfaceVertices(*mesh);
    EXPECT_EQ(vertices[3 * 6].x, 7.0f);
    EXPECT_EQ(vertices[3 * 6 + 2].y, 0.75f);
}

} // namespace
