#include <ovMaths/Quaternion.h>

#include "Reference.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovMaths/MathConstants.h>
#include <ovMaths/Matrix.h>

using ovMaths::MathConstants;
using ovMaths::Matrix;
using ovMaths::Quaternion;
using ovMaths::Vector;

namespace {

constexpr float INFINITE = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

// Four numbers rounded to floats move a rotated unit vector by less than this.
constexpr double ROUNDING = 5e-7;

void expectRotation(const Quaternion& quaternion, const reference::Matrix& expected,
                    double tolerance = ROUNDING) {
    EXPECT_NEAR(reference::lengthOf(quaternion), 1.0, 2e-7) << quaternion.toString();
    reference::expectNear(reference::matrixOf(quaternion), expected, tolerance);
}

reference::Matrix eulerReference(double pitch, double yaw, double roll) {
    return reference::multiply(
        reference::rotation({0, 1, 0}, yaw),
        reference::multiply(reference::rotation({1, 0, 0}, pitch), reference::rotation({0, 0, 1}, roll)));
}

} // namespace

TEST(QuaternionTest, MadeFromNumbers) {
    EXPECT_EQ(Quaternion(), Quaternion(0, 0, 0, 1));
    EXPECT_EQ(Quaternion::newQuat4(1, 2, 3, 4), Quaternion(1, 2, 3, 4));
    for (const Quaternion& other :
         {Quaternion(0, 2, 3, 4), Quaternion(1, 0, 3, 4), Quaternion(1, 2, 0, 4), Quaternion(1, 2, 3, 0)})
        EXPECT_NE(Quaternion(1, 2, 3, 4), other);
    EXPECT_EQ(Quaternion(1, 2, 3, 4).getConjugate(), Quaternion(-1, -2, -3, 4));
    EXPECT_EQ(Quaternion(1, -2, 0.5f, 4).toString(), "Quat(1.000000, -2.000000, 0.500000, 4.000000)");
}

TEST(QuaternionTest, AxisAngleTurnsAxesTowardsEachOther) {
    const struct {
        Vector axis, from, to;
    } cases[] = {{{0, 0, 2}, {1, 0, 0}, {0, 1, 0}},
                 {{3, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                 {{0, 4, 0}, {0, 0, 1}, {1, 0, 0}}};
    for (const auto& row : cases) {
        Quaternion quaternion;
        quaternion.setFromAxisAngle(row.axis, MathConstants::PI_OVER_2);
        reference::expectNear(quaternion.transform(row.from), row.to, ROUNDING);
    }
    reference::Numbers numbers;
    for (int i = 0; i < 100; ++i) {
        const Vector axis = numbers.nextVector();
        const float angle = numbers.next();
        Quaternion quaternion;
        quaternion.setFromAxisAngle(axis, angle);
        expectRotation(quaternion, reference::rotation({axis.x, axis.y, axis.z}, angle));
    }
}

TEST(QuaternionTest, DegenerateAxesAndAnglesGiveTheIdentity) {
    const struct {
        Vector axis;
        float angle;
    } cases[] = {{{}, 1},
                 {{0, 0, 0, 1}, 1},
                 {{NOT_A_NUMBER, 1, 0}, 1},
                 {{INFINITE, 0, 0}, 1},
                 {{1, 0, 0}, NOT_A_NUMBER},
                 {{1, 0, 0}, INFINITE}};
    for (const auto& row : cases) {
        Quaternion quaternion(1, 2, 3, 4);
        quaternion.setFromAxisAngle(row.axis, row.angle);
        EXPECT_EQ(quaternion, Quaternion());
    }
    for (const Vector& angles :
         {Vector(NOT_A_NUMBER, 0, 0), Vector(0, INFINITE, 0), Vector(0, 0, -INFINITE)}) {
        Quaternion quaternion(1, 2, 3, 4);
        quaternion.setFromEuler(angles.x, angles.y, angles.z);
        EXPECT_EQ(quaternion, Quaternion());
    }
}

TEST(QuaternionTest, TransformKeepsW) {
    Quaternion quaternion;
    quaternion.setFromAxisAngle({0, 0, 1}, MathConstants::PI_OVER_2);
    reference::expectNear(quaternion.transform({1, 2, 3, 7}), {-2, 1, 3, 7}, 1e-6);
    EXPECT_EQ(Quaternion().transform({1, 2, 3, 7}), Vector(1, 2, 3, 7));
}

TEST(QuaternionTest, ApplyAppendsAndTheProductAppliesTheRightOneFirst) {
    reference::Numbers numbers;
    for (int i = 0; i < 50; ++i) {
        const Quaternion a = numbers.nextQuaternion();
        const Quaternion b = numbers.nextQuaternion();
        const Vector v = numbers.nextVector();
        // Vectors of length up to 17 go through two rotations.
        reference::expectNear((a * b).transform(v), a.transform(b.transform(v)), 2e-5);
        Quaternion appended = a;
        appended.apply(b);
        EXPECT_EQ(appended, b * a);
        reference::expectNear(a.getConjugate().transform(a.transform(v)), v, 2e-5);
    }
    Quaternion self = numbers.nextQuaternion();
    const Quaternion twice = self * self;
    self.apply(self);
    EXPECT_EQ(self, twice);
}

TEST(QuaternionTest, EulerAnglesRollThenPitchThenYaw) {
    reference::Numbers numbers;
    for (int i = 0; i < 200; ++i) {
        const float pitch = numbers.next(-1.5f, 1.5f);
        const float yaw = numbers.next(-3.1f, 3.1f);
        const float roll = numbers.next(-3.1f, 3.1f);
        Quaternion quaternion;
        quaternion.setFromEuler(pitch, yaw, roll);
        expectRotation(quaternion, eulerReference(pitch, yaw, roll));
        // Near the poles a rounding of 1e-7 moves yaw and roll by 1e-7 / cos(pitch).
        reference::expectNear(quaternion.getAsEulerAngles(), {pitch, yaw, roll}, 1e-6 / std::cos(pitch));
        // The length does not matter to the angles.
        const Quaternion longer(quaternion.x * 8, quaternion.y * 8, quaternion.z * 8, quaternion.w * 8);
        reference::expectNear(longer.getAsEulerAngles(), quaternion.getAsEulerAngles(), 1e-6);
    }
}

TEST(QuaternionTest, EulerAnglesAtThePolesMakeTheSameRotation) {
    for (const float pitch : {MathConstants::PI_OVER_2, -MathConstants::PI_OVER_2})
        for (const float yaw : {0.0f, 1.0f, -3.0f})
            for (const float roll : {0.0f, 2.0f, -0.5f}) {
                Quaternion quaternion;
                quaternion.setFromEuler(pitch, yaw, roll);
                const Vector angles = quaternion.getAsEulerAngles();
                EXPECT_NEAR(angles.x, pitch, 2e-3) << "the sine is flat here";
                EXPECT_EQ(angles.z, 0.0f);
                Quaternion again;
                again.setFromEuler(angles.x, angles.y, angles.z);
                // Within 1e-6 of the pole in the sine, that is sqrt(2e-6) in the angle.
                expectRotation(again, eulerReference(pitch, yaw, roll), 2e-3);
            }
    for (const Quaternion& nothing :
         {Quaternion(0, 0, 0, 0), Quaternion(NOT_A_NUMBER, 0, 0, 1), Quaternion(INFINITE, 0, 0, 1)})
        EXPECT_EQ(nothing.getAsEulerAngles(), Vector());
}

TEST(QuaternionTest, RotationBetweenDirections) {
    reference::Numbers numbers;
    for (int i = 0; i < 100; ++i) {
        const Vector from = numbers.nextVector();
        const Vector to = numbers.nextVector();
        Quaternion quaternion;
        quaternion.setFromRotationBetween(from, to);
        EXPECT_NEAR(reference::lengthOf(quaternion), 1.0, 2e-7);
        const Vector start(from.x, from.y, from.z);
        const Vector end(to.x, to.y, to.z);
        reference::expectNear(quaternion.transform(start.getNormalizedVec3()), end.getNormalizedVec3(), 1e-6);
        // The smallest rotation leaves what is perpendicular to both in place.
        const Vector axis = Vector::crossVec3(from, to).getNormalizedVec3();
        reference::expectNear(quaternion.transform(axis), axis, 1e-6);
    }
}

TEST(QuaternionTest, RotationBetweenDegenerateDirections) {
    const struct {
        Vector from, to;
        bool identity;
    } cases[] = {
        {{}, {1, 0, 0}, true},
        {{1, 0, 0}, {}, true},
        {{NOT_A_NUMBER, 0, 0}, {1, 0, 0}, true},
        {{1, 0, 0}, {0, INFINITE, 0}, true},
        {{1, 2, 3}, {2, 4, 6}, true},
        {{1, 0, 0}, {-5, 0, 0}, false},
        {{0, 1, 0}, {0, -1, 0}, false},
        {{0, 0, 1}, {0, 0, -1}, false},
        {{1, 2, 3}, {-1, -2, -3}, false},
        {{1, 0, 0}, {-1, 1e-5f, 0}, false},
        {{1, 0, 0}, {-1, 1e-8f, 0}, false},
        {{1e-20f, 0, 0}, {-1e20f, 0, 0}, false},
    };
    for (const auto& row : cases) {
        Quaternion quaternion(1, 2, 3, 4);
        quaternion.setFromRotationBetween(row.from, row.to);
        if (row.identity) {
            reference::expectNear(Vector(quaternion.x, quaternion.y, quaternion.z, quaternion.w),
                                  {0, 0, 0, 1}, 1e-7);
            continue;
        }
        EXPECT_NEAR(reference::lengthOf(quaternion), 1.0, 2e-7);
        reference::expectNear(quaternion.transform(row.from.getNormalizedVec3()), row.to.getNormalizedVec3(),
                              1e-6);
    }
}

TEST(QuaternionTest, ReadsRotationsFromMatrices) {
    reference::Numbers numbers;
    // Half turns about each axis have a zero w and take the other branches of the conversion.
    const struct {
        Vector axis;
        float angle;
    } cases[] = {{{1, 0, 0}, MathConstants::PI},
                 {{0, 1, 0}, MathConstants::PI},
                 {{0, 0, 1}, MathConstants::PI},
                 {{1, 1, 1}, MathConstants::PI},
                 {{1, 2, 3}, 0},
                 {{-2, 1, 4}, 1},
                 {{-2, 1, 4}, -3}};
    for (const auto& row : cases) {
        Quaternion expected;
        expected.setFromAxisAngle(row.axis, row.angle);
        Matrix matrix;
        matrix.setToTransformation({1, 2, 3}, {1, 1, 1}, expected);
        Quaternion orientation(9, 9, 9, 9);
        orientation.setFromOrientationMatrix(matrix);
        const reference::Matrix rotation =
            reference::rotation({row.axis.x, row.axis.y, row.axis.z}, row.angle);
        expectRotation(orientation, rotation);
        matrix.setToTransformation({1, 2, 3}, {4, 0.5f, 9}, expected);
        Quaternion transformation(9, 9, 9, 9);
        transformation.setFromTransformationMatrix(matrix);
        expectRotation(transformation, rotation, 1e-6);
    }
}

TEST(QuaternionTest, MatricesWithoutARotationGiveAUnitQuaternion) {
    const Matrix zero = Matrix::newMat4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1);
    Quaternion quaternion(1, 2, 3, 4);
    for (const Matrix& matrix : {zero, Matrix::newMat3(NOT_A_NUMBER, 0, 0, 0, 1, 0, 0, 0, 1),
                                 Matrix::newMat3(1, 0, 0, 0, INFINITE, 0, 0, 0, 1)}) {
        quaternion.setFromOrientationMatrix(matrix);
        EXPECT_EQ(quaternion, Quaternion());
    }
    reference::Numbers numbers;
    for (int i = 0; i < 100; ++i) {
        quaternion.setFromOrientationMatrix(numbers.nextMatrix());
        EXPECT_NEAR(reference::lengthOf(quaternion), 1.0, 2e-7);
        quaternion.setFromTransformationMatrix(numbers.nextMatrix());
        EXPECT_NEAR(reference::lengthOf(quaternion), 1.0, 2e-7);
    }
}

TEST(QuaternionTest, NormalizeGivesLengthOneOrTheIdentity) {
    const struct {
        Quaternion quaternion, expected;
    } cases[] = {
        {{0, 0, 0, -2}, {0, 0, 0, -1}},
        {{3, 0, 0, 4}, {0.6f, 0, 0, 0.8f}},
        {{3e30f, 0, 0, 4e30f}, {0.6f, 0, 0, 0.8f}},
        {{0, 1e-40f, 0, 0}, {0, 1, 0, 0}},
        {{0, 0, 0, 0}, {0, 0, 0, 1}},
        {{NOT_A_NUMBER, 0, 0, 1}, {0, 0, 0, 1}},
        {{0, INFINITE, 0, 1}, {0, 0, 0, 1}},
    };
    for (const auto& row : cases) {
        Quaternion quaternion = row.quaternion;
        quaternion.normalize();
        reference::expectNear(Vector(quaternion.x, quaternion.y, quaternion.z, quaternion.w),
                              {row.expected.x, row.expected.y, row.expected.z, row.expected.w}, 1e-7);
    }
}

TEST(QuaternionTest, SlerpTurnsAtConstantSpeedByTheShorterArc) {
    Quaternion from;
    Quaternion to;
    from.setFromAxisAngle({1, 2, 3}, 0.5f);
    to.setFromAxisAngle({1, 2, 3}, 2.5f);
    const Quaternion negativeTo(-to.x, -to.y, -to.z, -to.w);
    for (const float factor : {0.0f, 0.1f, 0.25f, 0.5f, 0.9f, 1.0f})
        for (const Quaternion& end : {to, negativeTo})
            expectRotation(Quaternion::slerp(from, end, factor),
                           reference::rotation({1, 2, 3}, 0.5 + 2.0 * factor), 1e-6);
    const struct {
        float factor, expectedAngle;
    } clamped[] = {{-1, 0.5f}, {2, 2.5f}, {NOT_A_NUMBER, 0.5f}, {INFINITE, 2.5f}};
    for (const auto& row : clamped)
        expectRotation(Quaternion::slerp(from, to, row.factor),
                       reference::rotation({1, 2, 3}, row.expectedAngle), 1e-6);
}

TEST(QuaternionTest, SlerpOfDegenerateEndsIsFinite) {
    reference::Numbers numbers;
    const Quaternion some = numbers.nextQuaternion();
    const Quaternion close(some.x + 1e-7f, some.y, some.z, some.w);
    expectRotation(Quaternion::slerp(some, some, 0.3f), reference::widen(reference::matrixOf(some)), 1e-6);
    expectRotation(Quaternion::slerp(some, close, 0.5f), reference::widen(reference::matrixOf(some)), 1e-6);
    // A zero quaternion stands for the identity.
    expectRotation(Quaternion::slerp(Quaternion(0, 0, 0, 0), Quaternion(0, 0, 0, 0), 0.5f),
                   reference::identity());
    // Half a turn apart either way round is right; the result is half way.
    const Quaternion half = Quaternion::slerp(Quaternion(), Quaternion(0, 0, 1, 0), 0.5f);
    EXPECT_NEAR(std::abs(half.transform({1, 0, 0}).y), 1.0f, 1e-6f);
}
