#include <ovMaths/Matrix.h>

#include "Reference.h"
#include <cfloat>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovMaths/MathConstants.h>
#include <utility>

using ovMaths::MathConstants;
using ovMaths::Matrix;
using ovMaths::Quaternion;
using ovMaths::Vector;

namespace {

constexpr float INFINITE = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

const Matrix COUNTING = Matrix::newMat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
const Matrix ZERO = Matrix::newMat4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);

// Results are rounded once from double precision to floats.
constexpr double ROUNDING = 1e-7;

struct SizedOperations {
    int size;
    Matrix (Matrix::*getInverse)() const;
    bool (Matrix::*inverse)();
    float (Matrix::*determinant)() const;
};

const SizedOperations SIZES[] = {
    {2, &Matrix::getInverseMat2, &Matrix::inverseMat2, &Matrix::getDeterminantMat2},
    {3, &Matrix::getInverseMat3, &Matrix::inverseMat3, &Matrix::getDeterminantMat3},
    {4, &Matrix::getInverseMat4, &Matrix::inverseMat4, &Matrix::getDeterminantMat4},
};

Vector projected(const Matrix& matrix, const Vector& point) {
    const Vector clip = matrix * Vector(point.x, point.y, point.z, 1);
    return clip / clip.w;
}

bool isFinite(const Matrix& matrix) {
    for (const auto& row : matrix.m)
        for (const float value : row)
            if (!std::isfinite(value))
                return false;
    return true;
}

} // namespace

TEST(MatrixTest, IsTheIdentityByDefault) {
    reference::expectNear(Matrix(), reference::identity(), 0.0);
}

TEST(MatrixTest, MadeFromNumbersInMemoryOrder) {
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ((&COUNTING.m[0][0])[i], float(i + 1));
    EXPECT_EQ(Matrix::newMat2(1, 2, 3, 4), Matrix::newMat4(1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    EXPECT_EQ(Matrix::newMat3(1, 2, 3, 4, 5, 6, 7, 8, 9),
              Matrix::newMat4(1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 0, 0, 0, 1));
}

TEST(MatrixTest, RowsColumnsAndElements) {
    EXPECT_EQ(COUNTING.getRow0(), Vector(1, 2, 3, 4));
    EXPECT_EQ(COUNTING.getRow1(), Vector(5, 6, 7, 8));
    EXPECT_EQ(COUNTING.getRow2(), Vector(9, 10, 11, 12));
    EXPECT_EQ(COUNTING.getRow3(), Vector(13, 14, 15, 16));
    EXPECT_EQ(COUNTING.getCol0(), Vector(1, 5, 9, 13));
    EXPECT_EQ(COUNTING.getCol1(), Vector(2, 6, 10, 14));
    EXPECT_EQ(COUNTING.getCol2(), Vector(3, 7, 11, 15));
    EXPECT_EQ(COUNTING.getCol3(), Vector(4, 8, 12, 16));
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            EXPECT_EQ(COUNTING.get(row, column), float(row * 4 + column + 1));
            Matrix matrix = COUNTING;
            EXPECT_TRUE(matrix.set(row, column, -1));
            EXPECT_EQ(matrix.m[row][column], -1.0f);
            matrix.m[row][column] = COUNTING.m[row][column];
            EXPECT_EQ(matrix, COUNTING);
        }
    for (const auto& [row, column] : {std::pair{-1, 0}, {0, -1}, {4, 0}, {0, 4}, {1 << 30, 1 << 30}}) {
        Matrix matrix = COUNTING;
        EXPECT_EQ(matrix.get(row, column), 0.0f);
        EXPECT_FALSE(matrix.set(row, column, -1));
        EXPECT_EQ(matrix, COUNTING);
    }
}

TEST(MatrixTest, TransposeTracesAndElementwiseOperators) {
    const Matrix transposed = Matrix::newMat4(1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16);
    EXPECT_EQ(COUNTING.getTranspose(), transposed);
    Matrix inPlace = COUNTING;
    inPlace.transpose();
    EXPECT_EQ(inPlace, transposed);
    EXPECT_EQ(COUNTING.getTraceMat2(), 7.0f);
    EXPECT_EQ(COUNTING.getTraceMat3(), 18.0f);
    EXPECT_EQ(COUNTING.getTraceMat4(), 34.0f);
    EXPECT_EQ(COUNTING + transposed,
              Matrix::newMat4(2, 7, 12, 17, 7, 12, 17, 22, 12, 17, 22, 27, 17, 22, 27, 32));
    EXPECT_EQ(COUNTING - transposed, Matrix::newMat4(0, -3, -6, -9, 3, 0, -3, -6, 6, 3, 0, -3, 9, 6, 3, 0));
    EXPECT_TRUE(COUNTING != transposed);
}

TEST(MatrixTest, ProductAppliesTheRightOneFirst) {
    reference::Numbers numbers;
    for (int i = 0; i < 50; ++i) {
        const Matrix a = numbers.nextMatrix();
        const Matrix b = numbers.nextMatrix();
        // Four products of floats are summed in floats.
        reference::expectNear(a * b, reference::multiply(reference::widen(a), reference::widen(b)), 5e-7);
        const Vector v = numbers.nextVector();
        reference::expectNear((a * b) * v, a * (b * v), 2e-2 /* terms up to 16000, summed in two orders */);
    }
    Matrix move;
    move.setPositionComponent({1, 2, 3});
    EXPECT_EQ(move * Vector(10, 20, 30, 1), Vector(11, 22, 33, 1));
    EXPECT_EQ(move * Vector(10, 20, 30, 0), Vector(10, 20, 30, 0));
    EXPECT_EQ(COUNTING * Vector(1, 10, 100, 1000), Vector(4321, 8765, 13209, 17653));
}

TEST(MatrixTest, DeterminantsAndInversesAgreeWithElimination) {
    reference::Numbers numbers;
    for (const SizedOperations& operations : SIZES)
        for (int i = 0; i < 100; ++i) {
            const Matrix matrix = numbers.nextMatrix();
            const reference::Matrix wide = reference::widen(matrix);
            const double determinant = reference::determinant(wide, operations.size);
            EXPECT_NEAR((matrix.*operations.determinant)(), determinant,
                        std::abs(determinant) * ROUNDING + 1e-9);
            const reference::Matrix expected = reference::inverse(wide, operations.size);
            reference::expectNear((matrix.*operations.getInverse)(), expected, ROUNDING);
            Matrix inPlace = matrix;
            EXPECT_TRUE((inPlace.*operations.inverse)());
            EXPECT_EQ(inPlace, (matrix.*operations.getInverse)());
        }
}

TEST(MatrixTest, InversesOfClosedForm) {
    Matrix projection;
    ASSERT_TRUE(projection.setToPerspectiveMatrix(MathConstants::PI_OVER_2, 2.0f, 0.001f, 100000.0f));
    const struct {
        Matrix matrix, expected;
    } cases[] = {
        {Matrix(), Matrix()},
        {Matrix::newMat3(2, 0, 0, 0, 4, 0, 0, 0, -8),
         Matrix::newMat3(0.5f, 0, 0, 0, 0.25f, 0, 0, 0, -0.125f)},
        {Matrix::newMat4(1, 0, 0, 5, 0, 1, 0, -6, 0, 0, 1, 7, 0, 0, 0, 1),
         Matrix::newMat4(1, 0, 0, -5, 0, 1, 0, 6, 0, 0, 1, -7, 0, 0, 0, 1)},
        {Matrix::newMat4(0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 0),
         Matrix::newMat4(0, 0, 0, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0)},
        {Matrix::newMat3(1e-15f, 0, 0, 0, 1e-15f, 0, 0, 0, 1e-15f),
         Matrix::newMat3(1e15f, 0, 0, 0, 1e15f, 0, 0, 0, 1e15f)},
        // Rows that are almost parallel: the determinant is 2^-22 of their lengths.
        {Matrix::newMat2(1, 1, 1, 1.0f + 0x1p-22f),
         Matrix::newMat2(0x1p22f + 1, -0x1p22f, -0x1p22f, 0x1p22f)},
    };
    for (const auto& row : cases)
        EXPECT_EQ(row.matrix.getInverseMat4(), row.expected) << row.matrix.getInverseMat4().toString();
    // A matrix and its inverse, both rounded to floats; the depth terms reach 1000.
    reference::expectNear(projection * projection.getInverseMat4(), reference::identity(), 1e-4);
}

TEST(MatrixTest, SingularMatricesHaveNoInverse) {
    const Matrix cases[] = {
        ZERO,
        COUNTING,
        Matrix::newMat4(1, 2, 0, 0, 2, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1),
        Matrix::newMat4(0.1f, 0.2f, 0.1f, 0, 0.1f, 0.2f, 0.1f, 0, 1, 2, 1, 0, 0, 0, 0, 1),
        Matrix::newMat4(NOT_A_NUMBER, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1),
        Matrix::newMat4(INFINITE, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1),
        // The inverse of the smallest floats is above the largest.
        Matrix::newMat3(1e-40f, 0, 0, 0, 1e-40f, 0, 0, 0, 1e-40f),
    };
    for (const Matrix& matrix : cases)
        for (const SizedOperations& operations : SIZES) {
            // The upper left parts of the counting matrix are regular below three.
            if (operations.size == 2 && matrix == COUNTING)
                continue;
            EXPECT_EQ((matrix.*operations.getInverse)(), ZERO) << operations.size << matrix.toString();
            Matrix inPlace = matrix;
            EXPECT_FALSE((inPlace.*operations.inverse)());
            EXPECT_EQ(inPlace.toString(), matrix.toString()) << "unchanged";
        }
    EXPECT_EQ(COUNTING / ZERO, ZERO);
}

TEST(MatrixTest, DivisionUndoesTheProduct) {
    reference::Numbers numbers;
    for (int i = 0; i < 20; ++i) {
        const Matrix a = numbers.nextMatrix();
        Matrix b = numbers.nextMatrix();
        // Well away from singular, so that the rounding is not magnified.
        for (int d = 0; d < 4; ++d)
            b.m[d][d] += 60.0f;
        reference::expectNear(a * b / b, reference::widen(a), 1e-6);
    }
}

TEST(MatrixTest, TransformationIsTranslationRotationScale) {
    reference::Numbers numbers;
    for (int i = 0; i < 100; ++i) {
        const Vector position = numbers.nextVector();
        const Vector scale(numbers.next(0.1f, 5), numbers.next(0.1f, 5), numbers.next(0.1f, 5));
        const Vector axis = numbers.nextVector();
        const float angle = numbers.next(-3, 3);
        Quaternion orientation;
        orientation.setFromAxisAngle(axis, angle);
        Matrix matrix;
        matrix.setToTransformation(position, scale, orientation);
        const reference::Matrix expected =
            reference::multiply(reference::translation(position.x, position.y, position.z),
                                reference::multiply(reference::rotation({axis.x, axis.y, axis.z}, angle),
                                                    reference::scaling(scale.x, scale.y, scale.z)));
        // The quaternion itself is rounded to floats.
        reference::expectNear(matrix, expected, 5e-7);
        Vector gotPosition;
        Vector gotScale;
        Quaternion gotOrientation;
        matrix.getDecomposed(gotPosition, gotScale, gotOrientation);
        EXPECT_EQ(gotPosition, Vector(position.x, position.y, position.z));
        EXPECT_EQ(gotPosition, matrix.getPositionComponent());
        EXPECT_EQ(gotScale, matrix.getScaleComponent());
        EXPECT_EQ(gotOrientation, matrix.getOrientationComponent());
        reference::expectNear(gotScale, scale, 3e-6);
        reference::expectNear(reference::matrixOf(gotOrientation),
                              reference::rotation({axis.x, axis.y, axis.z}, angle), 1e-6);
    }
}

TEST(MatrixTest, DecomposedComponentsMakeTheMatrixAgain) {
    Quaternion turn;
    turn.setFromAxisAngle({1, 2, -3}, 2.0f);
    const struct {
        Vector scale;
        bool mirrors;
    } cases[] = {
        {{1, 1, 1}, false},   {{-1, 1, 1}, true},      {{1, -2, 1}, true},     {{1, 1, -3}, true},
        {{-1, -2, 3}, false}, {{-1, -2, -3}, true},    {{0, 1, 2}, false},     {{1, 0, 2}, false},
        {{1, 2, 0}, false},   {{1, 0, 0}, false},      {{0, 1, 0}, false},     {{0, 0, -1}, false},
        {{0, 0, 0}, false},   {{1e-12f, 1, 1}, false}, {{1e12f, 1, 1}, false},
    };
    for (const auto& row : cases) {
        Matrix matrix;
        matrix.setToTransformation({4, 5, 6}, row.scale, turn);
        Vector position;
        Vector scale;
        Quaternion orientation;
        matrix.getDecomposed(position, scale, orientation);
        EXPECT_NEAR(reference::lengthOf(orientation), 1.0, 2e-7);
        EXPECT_EQ(scale.x < 0, row.mirrors) << row.scale.toString();
        EXPECT_GE(scale.y, 0.0f);
        EXPECT_GE(scale.z, 0.0f);
        Matrix again;
        again.setToTransformation(position, scale, orientation);
        reference::expectNear(again, reference::widen(matrix), 1e-6);
    }
}

TEST(MatrixTest, DegenerateMatricesHaveAFiniteOrientation) {
    const Matrix cases[] = {
        ZERO,
        COUNTING,
        Matrix::newMat3(1, 1, 1, 0, 0, 0, 0, 0, 0),
        Matrix::newMat3(0, 0, 0, 0, 0, 0, 1, 1, 1),
        Matrix::newMat3(1, 1, 0, 1, 1, 0, 1, 1, 1),
        Matrix::newMat3(0, 1, 1, 0, 1, 1, 0, 1, 1),
        Matrix::newMat3(FLT_MAX, FLT_MAX, FLT_MAX, FLT_MAX, FLT_MAX, 0, FLT_MAX, 0, 0),
        Matrix::newMat3(FLT_MIN, 0, 0, 0, 1e-44f, 0, 0, 0, 1),
        Matrix::newMat3(NOT_A_NUMBER, 0, 0, 0, 1, 0, 0, 0, 1),
        Matrix::newMat3(1, 0, 0, 0, INFINITE, 0, 0, 0, 1),
    };
    for (const Matrix& matrix : cases) {
        EXPECT_NEAR(reference::lengthOf(matrix.getOrientationComponent()), 1.0, 2e-7) << matrix.toString();
        Matrix scaled = matrix;
        scaled.setScaleComponent({1, 1, 1});
        EXPECT_TRUE(isFinite(scaled)) << matrix.toString();
        // Scale one leaves a pure rotation: its determinant is one.
        EXPECT_NEAR(scaled.getDeterminantMat3(), 1.0f, 1e-6f) << matrix.toString();
    }
    EXPECT_EQ(ZERO.getOrientationComponent(), Quaternion());
}

TEST(MatrixTest, ShearDropsOutOfTheOrientation) {
    Quaternion turn;
    turn.setFromAxisAngle({3, -1, 2}, 1.2f);
    Matrix rotation;
    rotation.setToTransformation({}, {1, 1, 1}, turn);
    const Matrix shear = Matrix::newMat3(1, 0.5f, -0.25f, 0, 1, 2, 0, 0, 1);
    reference::expectNear(reference::matrixOf((rotation * shear).getOrientationComponent()),
                          reference::widen(rotation), 1e-6);
}

TEST(MatrixTest, ComponentsAreSetOneByOne) {
    Quaternion first;
    Quaternion second;
    first.setFromAxisAngle({1, 1, 0}, 0.7f);
    second.setFromAxisAngle({0, 1, -2}, -2.0f);
    Matrix expected;
    Matrix matrix;
    matrix.setToTransformation({1, 2, 3}, {2, 3, 4}, first);

    matrix.setPositionComponent({-5, 6, 7, 99});
    expected.setToTransformation({-5, 6, 7}, {2, 3, 4}, first);
    EXPECT_EQ(matrix, expected);

    matrix.setOrientationComponent(second);
    expected.setToTransformation({-5, 6, 7}, {2, 3, 4}, second);
    reference::expectNear(matrix, reference::widen(expected), 3e-7);

    matrix.setScaleComponent({-1, 0.5f, 8});
    expected.setToTransformation({-5, 6, 7}, {-1, 0.5f, 8}, second);
    reference::expectNear(matrix, reference::widen(expected), 3e-7);

    matrix.setOrientationComponent(Quaternion(0, 0, 0, 0));
    EXPECT_EQ(matrix.getOrientationComponent(), Quaternion()) << "a zero quaternion is no rotation";
    matrix.setToTransformation({}, {1, 1, 1}, Quaternion(0, 0, 10, 10));
    reference::expectNear(matrix, reference::rotation({0, 0, 1}, std::acos(0.0)), ROUNDING);
}

TEST(MatrixTest, ViewLooksAlongItsDirection) {
    // Each row: what lies ahead, to the right and above of the eye, in the world.
    const struct {
        Vector position, direction, up, right, above, ahead;
    } cases[] = {
        {{0, 0, 0}, {0, 0, 1}, {0, 1, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{1, 2, 3}, {0, 0, 7}, {}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{1, 2, 3}, {0, 0, -1}, {0, 2, 0}, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
        {{1, 2, 3}, {5, 0, 0}, {0, 1, 0}, {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
        {{1, 2, 3}, {0, 0, 1}, {1, 0, 0}, {0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
        {{0, 0, 0}, {0, 0, 1}, {0, 1, 5}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{0, 9, 0}, {0, -1, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
        {{0, 9, 0}, {0, 1, 0}, {}, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
        {{0, 0, 0}, {0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{4, 4, 4}, {0, 0, 0}, {}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{0, 0, 0}, {NOT_A_NUMBER, 0, 1}, {INFINITE, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{0, 0, 0}, {0, 0, 1e-30f}, {0, 1e30f, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    };
    for (const auto& row : cases) {
        Matrix view = COUNTING;
        view.setToViewMatrixDirection(row.position, row.direction, row.up);
        const auto seen = [&](const Vector& offset) {
            const Vector point = row.position + offset;
            return view * Vector(point.x, point.y, point.z, 1);
        };
        // Coordinates below ten are subtracted in floats.
        const double tolerance = 2e-6;
        reference::expectNear(seen({}), {0, 0, 0, 1}, tolerance);
        reference::expectNear(seen(row.right), {1, 0, 0, 1}, tolerance);
        reference::expectNear(seen(row.above), {0, 1, 0, 1}, tolerance);
        reference::expectNear(seen(row.ahead), {0, 0, 1, 1}, tolerance);
    }
}

TEST(MatrixTest, ViewsAreRigid) {
    reference::Numbers numbers;
    for (int i = 0; i < 100; ++i) {
        Matrix view;
        const Vector direction = numbers.nextVector();
        const Vector up = numbers.nextVector();
        view.setToViewMatrixDirection(numbers.nextVector(), direction, up);
        EXPECT_NEAR(view.getDeterminantMat3(), 1.0f, 1e-6f);
        reference::expectNear(view.getScaleComponent(), {1, 1, 1}, 1e-6);
        const Vector seenDirection = view * Vector(direction.x, direction.y, direction.z);
        reference::expectNear(seenDirection, {0, 0, direction.getLengthVec3(), 0}, 1e-5);
        const Vector seenUp = view * Vector(up.x, up.y, up.z);
        EXPECT_NEAR(seenUp.x, 0.0f, 1e-5f);
        EXPECT_GT(seenUp.y, 0.0f);
    }
}

TEST(MatrixTest, PerspectiveMapsTheFrustumToTheClipBox) {
    const struct {
        float field, aspect, near, far;
    } cases[] = {{MathConstants::PI_OVER_2, 1, 1, 2},
                 {1.0f, 16.0f / 9, 0.1f, 1000},
                 {2.8f, 0.5f, 0.01f, 10},
                 {0.02f, 3, 5, 6},
                 {1.0f, 1, 100, 0.5f}};
    for (const auto& row : cases) {
        Matrix matrix = COUNTING;
        ASSERT_TRUE(matrix.setToPerspectiveMatrix(row.field, row.aspect, row.near, row.far));
        for (const auto& [z, depth] : {std::pair{row.near, 0.0f}, {row.far, 1.0f}}) {
            const float top = float(z * std::tan(0.5 * double(row.field)));
            // The two depth terms are rounded to floats of about far / (far - near).
            const double tolerance = 1e-6 * std::max(1.0f, row.far / std::abs(row.far - row.near)) + 1e-6;
            reference::expectNear(projected(matrix, {top * row.aspect, top, z}), {1, 1, depth, 1}, tolerance);
            reference::expectNear(projected(matrix, {-top * row.aspect, -top, z}), {-1, -1, depth, 1},
                                  tolerance);
            EXPECT_EQ((matrix * Vector(0, 0, z, 1)).w, z);
        }
        EXPECT_FLOAT_EQ(matrix.m[2][2], row.far / (row.far - row.near));
        EXPECT_FLOAT_EQ(matrix.m[2][3], -row.near * row.far / (row.far - row.near));
    }
}

TEST(MatrixTest, OrthographicMapsTheBoxToTheClipBox) {
    const struct {
        float width, height, near, far;
    } cases[] = {{2, 2, 0, 1}, {16, 9, 0.1f, 100}, {1, 4, -5, 5}, {3, 3, 10, 0}};
    for (const auto& row : cases) {
        Matrix matrix = COUNTING;
        ASSERT_TRUE(matrix.setToOrthographicMatrix(row.width, row.height, row.near, row.far));
        reference::expectNear(projected(matrix, {row.width / 2, row.height / 2, row.near}), {1, 1, 0, 1},
                              1e-6);
        reference::expectNear(projected(matrix, {-row.width / 2, -row.height / 2, row.far}), {-1, -1, 1, 1},
                              1e-6);
        reference::expectNear(projected(matrix, {0, 0, (row.near + row.far) / 2}), {0, 0, 0.5f, 1}, 1e-6);
    }
}

TEST(MatrixTest, ProjectionsRefuseImpossibleParameters) {
    const float good[] = {1.0f, 1.5f, 0.5f, 10.0f};
    for (int parameter = 0; parameter < 4; ++parameter)
        for (const float bad : {0.0f, -1.0f, NOT_A_NUMBER, INFINITE, -INFINITE}) {
            float values[] = {good[0], good[1], good[2], good[3]};
            values[parameter] = bad;
            Matrix matrix = COUNTING;
            EXPECT_FALSE(matrix.setToPerspectiveMatrix(values[0], values[1], values[2], values[3]))
                << "parameter " << parameter << " = " << bad;
            // Any finite distances serve an orthographic projection.
            if (parameter < 2 || !std::isfinite(bad)) {
                EXPECT_FALSE(matrix.setToOrthographicMatrix(values[0], values[1], values[2], values[3]));
            }
            EXPECT_EQ(matrix, COUNTING) << "unchanged";
        }
    Matrix matrix = COUNTING;
    for (const float field : {MathConstants::PI, 4.0f, MathConstants::PI_2, 7.0f})
        EXPECT_FALSE(matrix.setToPerspectiveMatrix(field, 1, 1, 2)) << field;
    EXPECT_FALSE(matrix.setToPerspectiveMatrix(1, 1, 2, 2));
    EXPECT_FALSE(matrix.setToPerspectiveMatrix(1e-44f, 1e-44f, 1, 2)) << "beyond floats";
    EXPECT_FALSE(matrix.setToOrthographicMatrix(1, 1, 2, 2));
    EXPECT_FALSE(matrix.setToOrthographicMatrix(1e-44f, 1, 1, 2)) << "beyond floats";
    EXPECT_EQ(matrix, COUNTING);
}

TEST(MatrixTest, TextKeepsItsIrregularEnd) {
    EXPECT_EQ(Matrix().toString(), "Mat\n(\n"
                                   "\t1.000000, 0.000000, 0.000000, 0.000000, \n"
                                   "\t0.000000, 1.000000, 0.000000, 0.000000, \n"
                                   "\t0.000000, 0.000000, 1.000000, 0.000000, \n"
                                   "\t0.000000, 0.000000, 0.000000, 1.000000\n"
                                   ")");
    EXPECT_EQ(COUNTING.toString(), "Mat\n(\n"
                                   "\t1.000000, 2.000000, 3.000000, 4.000000, \n"
                                   "\t5.000000, 6.000000, 7.000000, 8.000000, \n"
                                   "\t9.000000, 10.000000, 11.000000, 12.000000, \n"
                                   "\t13.000000, 14.000000, 15.000000, 16.000000\n"
                                   ")");
}
