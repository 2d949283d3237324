// Plain double-precision references, written from the textbook formulas and sharing nothing with the library.
#pragma once

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <ovMaths/Matrix.h>
#include <random>
#include <utility>

namespace reference {

using Matrix = std::array<std::array<double, 4>, 4>;
using Three = std::array<double, 3>;

inline Matrix identity() {
    return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}

inline Matrix widen(const ovMaths::Matrix& matrix) {
    Matrix result;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            result[row][column] = matrix.m[row][column];
    return result;
}

inline Matrix multiply(const Matrix& a, const Matrix& b) {
    Matrix result = {};
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            for (int i = 0; i < 4; ++i)
                result[row][column] += a[row][i] * b[i][column];
    return result;
}

/// Rodrigues' formula: R = cos I + sin [u]x + (1 - cos) u u^T for a unit axis u.
inline Matrix rotation(Three axis, double angle) {
    const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    for (double& value : axis)
        value /= length;
    const double cross[3][3] = {{0, -axis[2], axis[1]}, {axis[2], 0, -axis[0]}, {-axis[1], axis[0], 0}};
    Matrix result = identity();
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            result[row][column] = (row == column ? std::cos(angle) : 0.0) +
                                  std::sin(angle) * cross[row][column] +
                                  (1.0 - std::cos(angle)) * axis[row] * axis[column];
    return result;
}

inline Matrix scaling(double x, double y, double z) {
    return {{{x, 0, 0, 0}, {0, y, 0, 0}, {0, 0, z, 0}, {0, 0, 0, 1}}};
}

inline Matrix translation(double x, double y, double z) {
    return {{{1, 0, 0, x}, {0, 1, 0, y}, {0, 0, 1, z}, {0, 0, 0, 1}}};
}

/// The determinant by expansion along the first row.
inline double determinant(const Matrix& matrix, int size) {
    if (size == 1)
        return matrix[0][0];
    double sum = 0;
    for (int skipped = 0; skipped < size; ++skipped) {
        Matrix minor = {};
        for (int row = 1; row < size; ++row)
            for (int column = 0, to = 0; column < size; ++column)
                if (column != skipped)
                    minor[row - 1][to++] = matrix[row][column];
        sum += (skipped % 2 ? -1.0 : 1.0) * matrix[0][skipped] * determinant(minor, size - 1);
    }
    return sum;
}

/// The inverse of the upper left part by Gauss-Jordan elimination with pivots; the identity elsewhere.
inline Matrix inverse(Matrix matrix, int size) {
    Matrix result = identity();
    for (int column = 0; column < size; ++column) {
        int pivot = column;
        for (int row = column + 1; row < size; ++row)
            if (std::abs(matrix[row][column]) > std::abs(matrix[pivot][column]))
                pivot = row;
        std::swap(matrix[column], matrix[pivot]);
        std::swap(result[column], result[pivot]);
        const double divisor = matrix[column][column];
        for (int i = 0; i < 4; ++i) {
            matrix[column][i] /= divisor;
            result[column][i] /= divisor;
        }
        for (int row = 0; row < size; ++row) {
            const double factor = matrix[row][column];
            for (int i = 0; row != column && i < 4; ++i) {
                matrix[row][i] -= factor * matrix[column][i];
                result[row][i] -= factor * result[column][i];
            }
        }
    }
    return result;
}

/// Each element to within the tolerance times the largest element (at least 1).
inline void expectNear(const ovMaths::Matrix& actual, const Matrix& expected, double tolerance) {
    double largest = 1.0;
    for (const auto& row : expected)
        for (const double value : row)
            largest = std::max(largest, std::abs(value));
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(actual.m[row][column], expected[row][column], tolerance * largest)
                << "row " << row << ", column " << column;
}

inline void expectNear(const ovMaths::Vector& actual, const ovMaths::Vector& expected, double tolerance) {
    EXPECT_NEAR(actual.x, expected.x, tolerance) << actual.toString() << " is not " << expected.toString();
    EXPECT_NEAR(actual.y, expected.y, tolerance) << actual.toString() << " is not " << expected.toString();
    EXPECT_NEAR(actual.z, expected.z, tolerance) << actual.toString() << " is not " << expected.toString();
    EXPECT_NEAR(actual.w, expected.w, tolerance) << actual.toString() << " is not " << expected.toString();
}

/// The matrix of what a quaternion does to the three axes.
inline ovMaths::Matrix matrixOf(const ovMaths::Quaternion& quaternion) {
    ovMaths::Matrix result;
    const ovMaths::Vector axes[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int column = 0; column < 3; ++column) {
        const ovMaths::Vector image = quaternion.transform(axes[column]);
        result.m[0][column] = image.x;
        result.m[1][column] = image.y;
        result.m[2][column] = image.z;
    }
    return result;
}

inline double lengthOf(const ovMaths::Quaternion& q) {
    return std::sqrt(double(q.x) * q.x + double(q.y) * q.y + double(q.z) * q.z + double(q.w) * q.w);
}

/// Repeatable numbers, the same on every machine.
class Numbers {
public:
    float next(float least = -10.0f, float greatest = 10.0f) {
        return least + (greatest - least) * float(_engine() >> 8) / float(1 << 24);
    }
    ovMaths::Vector nextVector() { return {next(), next(), next(), next()}; }
    ovMaths::Matrix nextMatrix() {
        ovMaths::Matrix result;
        for (auto& row : result.m)
            for (float& value : row)
                value = next();
        return result;
    }
    ovMaths::Quaternion nextQuaternion() {
        ovMaths::Quaternion result(next(), next(), next(), next());
        result.normalize();
        return result;
    }

private:
    std::mt19937 _engine{12345};
};

} // namespace reference
