#include <glm/mat4x4.hpp>
#include <glm/matrix.hpp>
#include <ovMaths/GlmInternal.h>
#include <ovMaths/MathConstants.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/NumberTextInternal.h>

namespace ovMaths {

namespace {

// The upper left part of the given size, the identity elsewhere. glm's matrices are columns of rows.
// In doubles: an inverse in floats loses most digits of a camera far from the origin.
glm::dmat4 partOf(const Matrix& matrix, int size) {
    glm::dmat4 part(1.0);
    for (int row = 0; row < size; ++row)
        for (int column = 0; column < size; ++column)
            part[column][row] = matrix.m[row][column];
    return part;
}

bool isUsable(double length) {
    return length > 0.0 && std::isfinite(length);
}

// The vector at length one, or the replacement when it has no direction.
glm::dvec3 directionOr(const glm::dvec3& vector, const glm::dvec3& replacement) {
    const double length = glm::length(vector);
    return isUsable(length) ? vector / length : replacement;
}

// Whether what is left of a column after removing the directions before it is more than rounding. Floats
// carry 1e-7 of the column's length.
bool isIndependent(const glm::dvec3& rest, const glm::dvec3& column) {
    const double length = glm::length(rest);
    return isUsable(length) && length > 1e-6 * glm::length(column);
}

glm::dvec3 anyPerpendicular(const glm::dvec3& unit) {
    const glm::dvec3 axis = std::abs(unit.x) < 0.9 ? glm::dvec3(1, 0, 0) : glm::dvec3(0, 1, 0);
    return glm::normalize(axis - unit * glm::dot(unit, axis));
}

// Gram-Schmidt over the three columns, in the order x, y, z; see Matrix::getOrientationComponent().
glm::dmat3 rotationFromColumns(glm::dmat3 columns, bool mirrored) {
    // A rotation cannot mirror, so one axis is turned; the scale along x then carries the sign.
    if (mirrored)
        columns[0] = -columns[0];
    const bool hasX = isUsable(glm::length(columns[0]));
    const glm::dvec3 y = directionOr(columns[1], {0, 1, 0});
    const glm::dvec3 xFromOthers = directionOr(glm::cross(y, columns[2]), anyPerpendicular(y));
    const glm::dvec3 unitX = hasX ? glm::normalize(columns[0]) : xFromOthers;
    const glm::dvec3 restY = columns[1] - unitX * glm::dot(unitX, columns[1]);
    if (isIndependent(restY, columns[1])) {
        const glm::dvec3 unitY = glm::normalize(restY);
        return {unitX, unitY, glm::cross(unitX, unitY)};
    }
    const glm::dvec3 restZ = columns[2] - unitX * glm::dot(unitX, columns[2]);
    const glm::dvec3 unitZ =
        isIndependent(restZ, columns[2]) ? glm::normalize(restZ) : glm::cross(unitX, anyPerpendicular(unitX));
    return {unitX, glm::cross(unitZ, unitX), unitZ};
}

// A target is changed as a whole or not at all. Half an inverse would be worse than the old matrix.
bool assignIfFinite(Matrix& target, const Matrix& value) {
    for (const auto& row : value.m)
        for (const float element : row)
            if (!std::isfinite(element))
                return false;
    target = value;
    return true;
}

double determinant(const Matrix& matrix, int size) {
    return glm::determinant(partOf(matrix, size));
}

} // namespace

Matrix Matrix::newMat2(float m00, float m01, float m10, float m11) {
    return newMat3(m00, m01, 0, m10, m11, 0, 0, 0, 1);
}

Matrix Matrix::newMat3(float m00, float m01, float m02, float m10, float m11, float m12, float m20, float m21,
                       float m22) {
    return newMat4(m00, m01, m02, 0, m10, m11, m12, 0, m20, m21, m22, 0, 0, 0, 0, 1);
}

Matrix Matrix::newMat4(float m00, float m01, float m02, float m03, float m10, float m11, float m12, float m13,
                       float m20, float m21, float m22, float m23, float m30, float m31, float m32,
                       float m33) {
    Matrix result;
    const float values[16] = {m00, m01, m02, m03, m10, m11, m12, m13, m20, m21, m22, m23, m30, m31, m32, m33};
    for (int i = 0; i < 16; ++i)
        result.m[i / 4][i % 4] = values[i];
    return result;
}

bool Matrix::_invert(int size, Matrix& inverse) const {
    const glm::dmat4 part = partOf(*this, size);
    double bound = 1.0;
    // The determinant is at most the product of the rows' lengths (Hadamard). Compared with that, the test
    // does not depend on the scale of the matrix: a tiny but sound one is not singular.
    for (const glm::dmat4 rows = glm::transpose(part); int row : {0, 1, 2, 3})
        bound *= glm::length(rows[row]);
    // Written so that NaN counts as singular.
    if (!(std::abs(glm::determinant(part)) > 1e-14 * bound) || !std::isfinite(bound))
        return false;
    const glm::dmat4 inverted = glm::inverse(part);
    Matrix result;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            result.m[row][column] = float(inverted[column][row]);
    return assignIfFinite(inverse, result);
}

Matrix Matrix::_getInverse(int size) const {
    // Zeros where there is no inverse: no inverse is zero, so that callers can tell.
    Matrix inverse = newMat4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    _invert(size, inverse);
    return inverse;
}

Matrix Matrix::getTranspose() const {
    Matrix result;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            result.m[row][column] = m[column][row];
    return result;
}

Quaternion Matrix::getOrientationComponent() const {
    const glm::dmat3 rotation =
        rotationFromColumns(glm::dmat3(partOf(*this, 3)), determinant(*this, 3) < 0.0);
    Matrix orthogonal;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            orthogonal.m[row][column] = float(rotation[column][row]);
    Quaternion result;
    result.setFromOrientationMatrix(orthogonal);
    return result;
}

Vector Matrix::getScaleComponent() const {
    const float sign = determinant(*this, 3) < 0.0 ? -1.0f : 1.0f;
    return {sign * getCol0().getLengthVec3(), getCol1().getLengthVec3(), getCol2().getLengthVec3()};
}

void Matrix::getDecomposed(Vector& position, Vector& scale, Quaternion& orientation) const {
    position = getPositionComponent();
    scale = getScaleComponent();
    orientation = getOrientationComponent();
}

void Matrix::setToViewMatrixDirection(const Vector& position, const Vector& direction, const Vector& up) {
    const glm::dvec3 zAxis = directionOr(toGlm(direction), {0, 0, 1});
    glm::dvec3 upwards = directionOr(toGlm(up), {0, 1, 0});
    if (!isIndependent(glm::cross(upwards, zAxis), upwards))
        upwards = std::abs(zAxis.z) > 0.9 ? glm::dvec3(0, 1, 0) : glm::dvec3(0, 0, 1);
    const glm::dvec3 xAxis = glm::normalize(glm::cross(upwards, zAxis));
    const glm::dvec3 axes[3] = {xAxis, glm::cross(zAxis, xAxis), zAxis};
    *this = Matrix();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            m[row][column] = float(axes[row][column]);
        m[row][3] = float(-glm::dot(axes[row], toGlm(position)));
    }
}

bool Matrix::setToPerspectiveMatrix(float verticalFieldOfView, float aspect, float near, float far) {
    const double cotangent = 1.0 / std::tan(0.5 * verticalFieldOfView);
    // In double: two planes far away would cancel as floats.
    const double range = double(far) - near;
    // Written so that NaN is outside its range.
    const bool valid = verticalFieldOfView > 0.0f && verticalFieldOfView < MathConstants::PI &&
                       aspect > 0.0f && std::isfinite(aspect) && near > 0.0f && far > 0.0f &&
                       std::isfinite(range) && range != 0.0;
    return valid &&
           assignIfFinite(*this, newMat4(float(cotangent / aspect), 0, 0, 0, 0, float(cotangent), 0, 0, 0, 0,
                                         float(far / range), float(-double(near) * far / range), 0, 0, 1, 0));
}

bool Matrix::setToOrthographicMatrix(float width, float height, float near, float far) {
    const double range = double(far) - near;
    const bool valid = width > 0.0f && std::isfinite(width) && height > 0.0f && std::isfinite(height) &&
                       std::isfinite(range) && range != 0.0;
    return valid &&
           assignIfFinite(*this, newMat4(float(2.0 / width), 0, 0, 0, 0, float(2.0 / height), 0, 0, 0, 0,
                                         float(1.0 / range), float(-near / range), 0, 0, 0, 1));
}

void Matrix::setPositionComponent(const Vector& position) {
    m[0][3] = position.x;
    m[1][3] = position.y;
    m[2][3] = position.z;
}

void Matrix::setOrientationComponent(const Quaternion& orientation) {
    _setOrientationAndScale(orientation, getScaleComponent());
}

void Matrix::setScaleComponent(const Vector& scale) {
    _setOrientationAndScale(getOrientationComponent(), scale);
}

void Matrix::setToTransformation(const Vector& position, const Vector& scale, const Quaternion& orientation) {
    *this = Matrix();
    _setOrientationAndScale(orientation, scale);
    setPositionComponent(position);
}

void Matrix::_setOrientationAndScale(const Quaternion& orientation, const Vector& scale) {
    Quaternion unit = orientation;
    unit.normalize();
    const glm::dmat3 rotation = glm::mat3_cast(glm::dquat(unit.w, unit.x, unit.y, unit.z));
    const glm::dvec3 scales = toGlm(scale);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m[row][column] = float(rotation[column][row] * scales[column]);
}

float Matrix::getDeterminantMat2() const {
    return float(determinant(*this, 2));
}

float Matrix::getDeterminantMat3() const {
    return float(determinant(*this, 3));
}

float Matrix::getDeterminantMat4() const {
    return float(determinant(*this, 4));
}

Matrix Matrix::operator+(const Matrix& other) const {
    Matrix sum;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            sum.m[row][column] = m[row][column] + other.m[row][column];
    return sum;
}

Matrix Matrix::operator-(const Matrix& other) const {
    Matrix difference;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            difference.m[row][column] = m[row][column] - other.m[row][column];
    return difference;
}

ovMemory::String Matrix::toString() const {
    ovMemory::String text = "Mat\n(\n";
    for (int row = 0; row < 4; ++row) {
        text.append("\t");
        for (int column = 0; column < 4; ++column) {
            appendNumber(text, m[row][column]);
            if (row < 3 || column < 3)
                text.append(", ");
        }
        text.append("\n");
    }
    text.append(")");
    return text;
}

} // namespace ovMaths
