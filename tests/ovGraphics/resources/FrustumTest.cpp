#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Frustum.h>
#include <ovMaths/MathConstants.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

constexpr float PLANE_ROUNDINGS = 1e-5f;

void expectPlane(const Vector& plane, const Vector& expected, const char* name) {
    EXPECT_LT((plane - expected).getLengthVec4(), PLANE_ROUNDINGS) << name << ' ' << plane.toString();
}

} // namespace

TEST(FrustumTest, hasTheSixPlanesOfAnOrthographicView) {
    Matrix projection;
    ASSERT_TRUE(projection.setToOrthographicMatrix(4, 2, 1, 11));
    const Frustum frustum = Frustum(projection).copy();
    expectPlane(frustum.getPlane(0), {1, 0, 0, 2}, "left");
    expectPlane(frustum.getPlane(1), {-1, 0, 0, 2}, "right");
    expectPlane(frustum.getPlane(2), {0, 1, 0, 1}, "bottom");
    expectPlane(frustum.getPlane(3), {0, -1, 0, 1}, "top");
    expectPlane(frustum.getPlane(4), {0, 0, 1, -1}, "near");
    expectPlane(frustum.getPlane(5), {0, 0, -1, 11}, "far");
    EXPECT_EQ(frustum.getPlane(6), Vector());
    EXPECT_EQ(Frustum().getPlane(0), Vector());
}

TEST(FrustumTest, movesWithTheCamera) {
    Matrix view;
    view.setToViewMatrixDirection({10, 0, 0}, {1, 0, 0});
    Matrix projection;
    ASSERT_TRUE(projection.setToPerspectiveMatrix(ovMaths::MathConstants::PI_OVER_2, 1.0f, 1.0f, 10.0f));
    const Frustum frustum(projection * view);
    expectPlane(frustum.getPlane(4), {1, 0, 0, -11}, "near");
    expectPlane(frustum.getPlane(5), {-1, 0, 0, 20}, "far");
    // Looking along +x with +y up, +z is to the left.
    const float half = 0.70710678f;
    expectPlane(frustum.getPlane(0), {half, 0, -half, -10 * half}, "left");
    expectPlane(frustum.getPlane(1), {half, 0, half, -10 * half}, "right");
}

TEST(FrustumTest, ofACameraIsInWorldSpace) {
    System system;
    const auto camera = Camera::create(&system);
    camera->setPosition({10, 0, 0});
    camera->lookAt({1, 0, 0}, {0, 1, 0});
    ASSERT_TRUE(camera->setOrthographic(4, 2, 1, 11));
    const Frustum frustum = camera->getFrustum();
    // Looking along +x with +y up, +z is to the left.
    expectPlane(frustum.getPlane(0), {0, 0, -1, 2}, "left");
    expectPlane(frustum.getPlane(2), {0, 1, 0, 1}, "bottom");
    expectPlane(frustum.getPlane(4), {1, 0, 0, -11}, "near");
    expectPlane(frustum.getPlane(5), {-1, 0, 0, 21}, "far");
}
