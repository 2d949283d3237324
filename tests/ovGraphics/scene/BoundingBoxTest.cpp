#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/resources/Frustum.h>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovMaths/MathConstants.h>

using namespace ovGraphics;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

// Sums of a few products of small numbers.
constexpr float FEW_ROUNDINGS = 1e-5f;

void expectBox(const BoundingBox& box, const Vector& minimum, const Vector& maximum) {
    EXPECT_LT((box.getMinimum() - minimum).getLengthVec3(), FEW_ROUNDINGS) << box.getMinimum().toString();
    EXPECT_LT((box.getMaximum() - maximum).getLengthVec3(), FEW_ROUNDINGS) << box.getMaximum().toString();
}

} // namespace

TEST(BoundingBoxTest, isEmptyUntilSomethingIsAdded) {
    BoundingBox box;
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(box.getCenter(), Vector());
    EXPECT_EQ(box.getSize(), Vector());
    box.add(BoundingBox());
    box.add(Vector(std::numeric_limits<float>::quiet_NaN(), 0, 0));
    box.add(Vector(0, std::numeric_limits<float>::infinity(), 0));
    EXPECT_TRUE(box.isEmpty());
    EXPECT_TRUE(box.getTransformed(Matrix()).isEmpty());
    box.add(Vector(1, 2, 3));
    EXPECT_FALSE(box.isEmpty());
    expectBox(box, {1, 2, 3}, {1, 2, 3});
}

TEST(BoundingBoxTest, growsByPointsAndBoxes) {
    BoundingBox box = BoundingBox::newCube({1, 1, 1}, 2);
    expectBox(box, {0, 0, 0}, {2, 2, 2});
    box.add(Vector(-1, 1, 5));
    expectBox(box, {-1, 0, 0}, {2, 2, 5});
    box.add(BoundingBox::newBox({0, -3, 0}, {1, 2, 4}));
    expectBox(box, {-1, -4, -2}, {2, 2, 5});
    EXPECT_EQ(box.getCenter(), Vector(0.5f, -1, 1.5f));
    EXPECT_EQ(box.getSize(), Vector(3, 6, 7));
}

TEST(BoundingBoxTest, holdsTheTransformedCorners) {
    const BoundingBox box = BoundingBox::newBox({1, 2, 3}, {2, 4, 6});
    ovMaths::Quaternion turn;
    turn.setFromAxisAngle({1, 2, -1}, 0.7f);
    Matrix matrix;
    matrix.setToTransformation({5, -6, 7}, {2, -1, 0.5f}, turn);
    BoundingBox expected;
    for (int corner = 0; corner < 8; ++corner) {
        const Vector point(corner & 1 ? 2.0f : 0.0f, corner & 2 ? 4.0f : 0.0f, corner & 4 ? 6.0f : 0.0f,
                           1.0f);
        expected.add(matrix * point);
    }
    expectBox(box.getTransformed(matrix), expected.getMinimum(), expected.getMaximum());
}

TEST(BoundingBoxTest, isEmptyWhereItsSizeIsNotFinite) {
    constexpr float LARGE = 3e38f;
    const BoundingBox box = BoundingBox::newBox({}, {LARGE, LARGE, LARGE});
    Matrix matrix;
    matrix.setScaleComponent({3.0f, 1.0f, 1.0f}); // the middle stays 0
    EXPECT_FALSE(box.isEmpty());
    EXPECT_TRUE(box.getTransformed(matrix).isEmpty());
}

TEST(BoundingBoxTest, isSeenUnlessItLiesOutsideOnePlane) {
    Matrix projection;
    ASSERT_TRUE(projection.setToPerspectiveMatrix(ovMaths::MathConstants::PI_OVER_2, 1.0f, 1.0f, 10.0f));
    const Frustum frustum(projection);
    struct Case {
        Vector center;
        bool seen;
    };
    // Half a metre wide boxes around; the view is as wide as it is far.
    const Case cases[] = {
        {{0, 0, 5}, true},     {{0, 0, -5}, false},    {{0, 0, 0.7f}, false}, {{0, 0, 0.8f}, true},
        {{0, 0, 10.2f}, true}, {{0, 0, 10.3f}, false}, {{5.4f, 0, 5}, true},  {{5.6f, 0, 5}, false},
        {{-5.4f, 0, 5}, true}, {{-5.6f, 0, 5}, false}, {{0, 5.4f, 5}, true},  {{0, 5.6f, 5}, false},
        {{0, -5.4f, 5}, true}, {{0, -5.6f, 5}, false},
    };
    for (const Case& row : cases)
        EXPECT_EQ(BoundingBox::newCube(row.center, 0.5f).checkAgainst(frustum), row.seen)
            << row.center.toString();
    EXPECT_TRUE(BoundingBox::newCube({}, 1000).checkAgainst(frustum));
    EXPECT_FALSE(BoundingBox().checkAgainst(frustum));
}
