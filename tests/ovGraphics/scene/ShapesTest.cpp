#include <ovGraphics/scene/Shapes.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/scene/Mesh.h>
#include <support/HeadlessSystem.h>

namespace {

using ovMaths::Vector;

struct ShapeVertex {
    Vector position, normal, uv, tangent, binormal;
};

ovMemory::Buffer<ShapeVertex> shapeVerticesOf(const ovGraphics::Mesh& mesh) {
    const auto& bytes = mesh.getCurrentVertexArray();
    ovMemory::Buffer<ShapeVertex> vertices(mesh.getVertexCount());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        float values[14];
        std::memcpy(values, &bytes[i * sizeof(values)], sizeof(values));
        const auto at = [&values](int place) {
            return Vector(values[place], values[place + 1], values[place + 2]);
        };
        vertices[i] = {at(0), at(3), Vector(values[6], values[7]), at(8), at(11)};
    }
    return vertices;
}

class ShapesTest : public testing::Test {
protected:
    ovGraphics::System& graphics() {
        return HeadlessSystem::get(ovGraphics::SHADER_LANGUAGE::GLSL).getSystem();
    }

    /// Frames at right angles, normals outside the front faces, tangents and binormals along u and against v.
    static void expectSound(const ovGraphics::Mesh& mesh) {
        const auto vertices = shapeVerticesOf(mesh);
        const auto& indices = mesh.getCurrentIndexArray();
        for (const ShapeVertex& vertex : vertices) {
            for (const Vector& axis : {vertex.normal, vertex.tangent, vertex.binormal})
                EXPECT_NEAR(axis.getLengthVec3(), 1.0f, 1e-5f);
            EXPECT_NEAR(vertex.normal.dotProductVec3(vertex.tangent), 0.0f, 1e-5f);
            EXPECT_NEAR(vertex.normal.dotProductVec3(vertex.binormal), 0.0f, 1e-5f);
            EXPECT_NEAR(vertex.tangent.dotProductVec3(vertex.binormal), 0.0f, 1e-5f);
        }
        for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
            const ShapeVertex& a = vertices[indices[i]];
            const ShapeVertex& b = vertices[indices[i + 1]];
            const ShapeVertex& c = vertices[indices[i + 2]];
            const Vector across = Vector::crossVec3(b.position - a.position, c.position - a.position);
            if (across.getLengthVec3() < 1e-7f) // at the poles
                continue;
            EXPECT_GT(across.dotProductVec3(a.normal), 0.0f)
                << "fronts run clockwise, in a left-handed space";
            // The change of position along an edge is du * tangent - dv * binormal, up to positive factors.
            for (const ShapeVertex* end : {&b, &c}) {
                const Vector edge = end->position - a.position;
                const Vector change = end->uv - a.uv;
                EXPECT_GE(edge.dotProductVec3(a.tangent) * change.x, -1e-4f);
                EXPECT_LE(edge.dotProductVec3(a.binormal) * change.y, 1e-4f);
            }
        }
    }
};

TEST_F(ShapesTest, theSphereIsRound) {
    const auto sphere = ovGraphics::makeSphere(graphics());
    ASSERT_TRUE(sphere);
    for (const ShapeVertex& vertex : shapeVerticesOf(*sphere)) {
        EXPECT_NEAR(vertex.position.getLengthVec3(), 1.0f, 1e-6f);
        EXPECT_EQ(vertex.position, vertex.normal);
    }
    expectSound(*sphere);
}

TEST_F(ShapesTest, thePlaneIsFlatAndRepeatsItsTexture) {
    const auto plane = ovGraphics::makePlane(graphics(), 3.0f);
    ASSERT_TRUE(plane);
    EXPECT_EQ(plane->getBoundingBox().getSize(), Vector(2.0f, 0.0f, 2.0f));
    float largest = 0.0f;
    for (const ShapeVertex& vertex : shapeVerticesOf(*plane))
        largest = std::max({largest, vertex.uv.x, vertex.uv.y});
    EXPECT_EQ(largest, 3.0f);
    expectSound(*plane);
}

TEST_F(ShapesTest, theBoxHasSixWholeSides) {
    const auto box = ovGraphics::makeBox(graphics());
    ASSERT_TRUE(box);
    EXPECT_EQ(box->getBoundingBox().getSize(), Vector(2.0f, 2.0f, 2.0f));
    EXPECT_EQ(box->getCurrentIndexArray().size(), 36u);
    ovMemory::Buffer<Vector> normals;
    for (const ShapeVertex& vertex : shapeVerticesOf(*box)) {
        EXPECT_EQ(vertex.position.dotProductVec3(vertex.normal), 1.0f) << "on its side";
        if (std::find(normals.begin(), normals.end(), vertex.normal) == normals.end())
            normals.push_back(vertex.normal);
    }
    EXPECT_EQ(normals.size(), 6u);
    expectSound(*box);
}

TEST_F(ShapesTest, theTorusIsARoundTubeAroundARing) {
    constexpr float THICKNESS = 0.3f;
    const auto torus = ovGraphics::makeTorus(graphics(), THICKNESS);
    ASSERT_TRUE(torus);
    for (const ShapeVertex& vertex : shapeVerticesOf(*torus)) {
        const float fromRing = std::hypot(vertex.position.x, vertex.position.z) - 1.0f;
        EXPECT_NEAR(std::hypot(fromRing, vertex.position.y), THICKNESS, 1e-5f);
        EXPECT_NEAR(vertex.normal.y * THICKNESS, vertex.position.y, 1e-5f);
    }
    EXPECT_NEAR(torus->getBoundingBox().getSize().x, 2.6f, 1e-5f);
    expectSound(*torus);
}

} // namespace
