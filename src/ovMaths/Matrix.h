// Matrices of four rows of four floats.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Quaternion.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovMaths {

/// Sixteen 32-bit floats: four rows of four in memory order. Matrices multiply column vectors (M * v), so a
/// translation is the fourth column and A * B applies B first.
///
/// The space is left-handed: +x right, +y up, the camera looks along +z. Angles are in radians. Operations
/// named Mat2 or Mat3 use the upper left 2x2 or 3x3 only; matrices they make are the identity elsewhere.
class OV_API Matrix {
public:
    /// m[row][column]; the identity by default.
    float m[4][4] = {{1.0f, 0.0f, 0.0f, 0.0f},
                     {0.0f, 1.0f, 0.0f, 0.0f},
                     {0.0f, 0.0f, 1.0f, 0.0f},
                     {0.0f, 0.0f, 0.0f, 1.0f}};

    /// From elements in memory order, row by row.
    static Matrix newMat2(float m00, float m01, float m10, float m11);
    static Matrix newMat3(float m00, float m01, float m02, float m10, float m11, float m12, float m20,
                          float m21, float m22);
    static Matrix newMat4(float m00, float m01, float m02, float m03, float m10, float m11, float m12,
                          float m13, float m20, float m21, float m22, float m23, float m30, float m31,
                          float m32, float m33);

    Vector getRow0() const { return _getRow(0); }
    Vector getRow1() const { return _getRow(1); }
    Vector getRow2() const { return _getRow(2); }
    Vector getRow3() const { return _getRow(3); }
    Vector getCol0() const { return _getCol(0); }
    Vector getCol1() const { return _getCol(1); }
    Vector getCol2() const { return _getCol(2); }
    Vector getCol3() const { return _getCol(3); }

    /// The element at a row and column, each 0 to 3; 0 outside that range.
    float get(int row, int column) const { return _isInside(row, column) ? m[row][column] : 0.0f; }

    /// Sets the element at a row and column, each 0 to 3. False, changing nothing, outside that range.
    bool set(int row, int column, float value) {
        if (!_isInside(row, column))
            return false;
        m[row][column] = value;
        return true;
    }

    /// The inverse of the part in use. A singular part has none: the result is then all zero, which no
    /// inverse can be. Singular is a determinant below 1e-14 of the product of the rows' lengths (the
    /// rounding of the computation, which is in double precision), a non-finite element, or an inverse
    /// outside the range of floats.
    Matrix getInverseMat2() const { return _getInverse(2); }
    Matrix getInverseMat3() const { return _getInverse(3); }
    Matrix getInverseMat4() const { return _getInverse(4); }

    /// Turns this into the inverse of the part in use. False, with this matrix unchanged, when that is
    /// singular.
    bool inverseMat2() { return _invert(2, *this); }
    bool inverseMat3() { return _invert(3, *this); }
    bool inverseMat4() { return _invert(4, *this); }

    /// Rows and columns of all four exchanged.
    Matrix getTranspose() const;
    void transpose() { *this = getTranspose(); }

    /// The translation: the fourth column's x, y and z; w is 0.
    Vector getPositionComponent() const { return {m[0][3], m[1][3], m[2][3]}; }

    /// The rotation of a transformation, its columns made orthogonal one after the other (Gram-Schmidt), so
    /// that scale and shear drop out. A mirroring is taken as a negative scale along x. Columns without a
    /// direction of their own are completed to a rotation; with none at all it is the identity.
    Quaternion getOrientationComponent() const;

    /// The lengths of the first three columns; w is 0. x is negative when the transformation mirrors.
    Vector getScaleComponent() const;

    /// The three components at once. setToTransformation() with them gives this matrix again, if it is a
    /// transformation without shear or projection.
    void getDecomposed(Vector& position, Vector& scale, Quaternion& orientation) const;

    /// The view matrix of a camera: world to view space, in which the camera is the origin and looks along
    /// +z.
    /// @param direction where the camera looks, of any length; zero or non-finite counts as (0, 0, 1)
    /// @param up zero or non-finite counts as (0, 1, 0).
    ///        An up along the direction cannot tell where up is.
    ///        It is replaced by (0, 0, 1), or by (0, 1, 0) if the direction is along z.
    void setToViewMatrixDirection(const Vector& position, const Vector& direction,
                                  const Vector& up = Vector());

    /// The perspective projection with y up and clip z from 0 at the near plane to 1 at the far plane:
    /// z' = A * z + B, w' = z with A = far / (far - near), B = -near * far / (far - near).
    /// @param verticalFieldOfView full angle, between 0 and pi (both excluded)
    /// @param aspect width / height, above 0
    /// @param near, far distances above 0 that differ; near above far gives reversed depth
    /// @return false
    ///         when a parameter is outside its range, or the result outside the range of floats;
    ///         this matrix is then unchanged
    bool setToPerspectiveMatrix(float verticalFieldOfView, float aspect, float near, float far);

    /// The orthographic projection of a box of the given width and height around the z axis, y up, with clip
    /// z from 0 at the near plane to 1 at the far plane.
    /// @param width, height above 0
    /// @param near, far any two distances that differ
    /// @return false
    ///         when a parameter is outside its range, or the result outside the range of floats;
    ///         this matrix is then unchanged
    bool setToOrthographicMatrix(float width, float height, float near, float far);

    /// Sets the translation; the rest stays.
    void setPositionComponent(const Vector& position);

    /// Sets the rotation, keeping position and scale; shear is lost. The quaternion is normalised first.
    void setOrientationComponent(const Quaternion& orientation);

    /// Sets the scale along the rotated axes, keeping position and orientation; shear is lost.
    void setScaleComponent(const Vector& scale);

    /// Translation * rotation * scale: points are scaled, then rotated, then moved. The quaternion is
    /// normalised first.
    void setToTransformation(const Vector& position, const Vector& scale, const Quaternion& orientation);

    float getDeterminantMat2() const;
    float getDeterminantMat3() const;
    float getDeterminantMat4() const;

    float getTraceMat2() const { return m[0][0] + m[1][1]; }
    float getTraceMat3() const { return getTraceMat2() + m[2][2]; }
    float getTraceMat4() const { return getTraceMat3() + m[3][3]; }

    /// Sum and difference are element by element, * is the matrix product, A / B is A times the inverse of B
    /// (all zero when B is singular), equality is exact.
    Matrix operator+(const Matrix& other) const;
    Matrix operator-(const Matrix& other) const;
    Matrix operator/(const Matrix& other) const { return *this * other.getInverseMat4(); }
    bool operator==(const Matrix& other) const = default;

    Matrix operator*(const Matrix& other) const {
        Matrix product;
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                product.m[row][column] = m[row][0] * other.m[0][column] + m[row][1] * other.m[1][column] +
                                         m[row][2] * other.m[2][column] + m[row][3] * other.m[3][column];
        return product;
    }

    /// The matrix times a column vector, with all four of its components (w = 1 for points, 0 for
    /// directions).
    Vector operator*(const Vector& vector) const {
        const auto row = [&](int i) {
            return m[i][0] * vector.x + m[i][1] * vector.y + m[i][2] * vector.z + m[i][3] * vector.w;
        };
        return {row(0), row(1), row(2), row(3)};
    }

    /// "Mat", then in parentheses on lines of their own the rows: a tab, then each number with six decimals
    /// and ", " after it, except after the very last. Scripts compare this text, so its irregular end stays:
    ///
    ///     Mat
    ///     (
    ///         1.000000, 0.000000, 0.000000, 0.000000, <- the first three rows end in ", "
    ///         ...
    ///         0.000000, 0.000000, 0.000000, 1.000000
    ///     )
    ovMemory::String toString() const;

private:
    static bool _isInside(int row, int column) { return row >= 0 && row < 4 && column >= 0 && column < 4; }
    Vector _getRow(int row) const { return {m[row][0], m[row][1], m[row][2], m[row][3]}; }
    Vector _getCol(int column) const { return {m[0][column], m[1][column], m[2][column], m[3][column]}; }
    bool _invert(int size, Matrix& inverse) const;
    Matrix _getInverse(int size) const;
    void _setOrientationAndScale(const Quaternion& orientation, const Vector& scale);
};

static_assert(sizeof(Matrix) == 16 * sizeof(float), "matrices are uploaded as four rows of four floats");

} // namespace ovMaths
