#include <cstring>
#include <ovMaths/Matrix.h>
#include <ovVeldris/scripts/mathsWrap/MatrixWrapper.h>
#include <ovVeldris/scripts/mathsWrap/Operands.h>
#include <ovVeldris/scripts/stdWrap/ArrayWrapper.h>

namespace ovMathsWrap {

namespace {

using namespace ovCommonWrap;
using ovMaths::Matrix;
using ovMaths::Vector;
using ovScripts::FunctionParameter;
using ovScripts::USER_TYPE_OPERATOR;
using ovScripts::UserType;

/// The elements as scripts see them.
using Rows = std::array<std::array<float, 4>, 4>;
static_assert(sizeof(Rows) == sizeof(Matrix::m) && alignof(Rows) == alignof(float));

void declareMatrixMembers(UserType& type) {
    type.setConstructor([](Arguments) -> void* { return new Matrix; })->setHelp("The identity.");
    type.setValueType<Matrix>();
    type.addMemberVariable(
            "_m", ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, TYPE_NAME<Rows>,
            [](void* matrix) {
                return FunctionParameter(static_cast<void*>(static_cast<Matrix*>(matrix)->m), TYPE_NAME<Rows>,
                                         false);
            },
            [](void* matrix, const FunctionParameter& rows) {
                std::memmove(static_cast<Matrix*>(matrix)->m, rows.getValueAsUserData<Rows>(), sizeof(Rows));
                return FunctionParameter::VOID;
            })
        ->help = "Four rows of four elements; changing them changes the matrix.";
}

FunctionParameter multiplyMatrix(const Matrix& left, const FunctionParameter& right) {
    if (const Matrix* matrix = objectOf<Matrix>(right))
        return toScript(left * *matrix);
    if (const Vector* vector = objectOf<Vector>(right))
        return toScript(left * *vector);
    return FunctionParameter::error("expected an ovMaths.Matrix or an ovMaths.Vector behind the *");
}

void declareMatrixOperators(UserType& type) {
    bind(*type.addOperator(USER_TYPE_OPERATOR::TO_STRING), &Matrix::toString);
    binaryOperator(type, USER_TYPE_OPERATOR::ADDITION, &Matrix::operator+);
    binaryOperator(type, USER_TYPE_OPERATOR::SUBTRACTION, &Matrix::operator-);
    binaryOperator(type, USER_TYPE_OPERATOR::MULTIPLICATION, multiplyMatrix)
        .setHelp("The product with a matrix, or with a vector as a column.");
    binaryOperator(type, USER_TYPE_OPERATOR::DIVISION, &Matrix::operator/)
        .setHelp("The product with the inverse; all zero when there is none.");
    equalOperator<Matrix>(type);
}

void declareElements(UserType& type) {
    staticFunction(type, "newMat2", &Matrix::newMat2, {"m00", "m01", "m10", "m11"});
    staticFunction(type, "newMat3", &Matrix::newMat3,
                   {"m00", "m01", "m02", "m10", "m11", "m12", "m20", "m21", "m22"});
    staticFunction(type, "newMat4", &Matrix::newMat4,
                   {"m00", "m01", "m02", "m03", "m10", "m11", "m12", "m13", "m20", "m21", "m22", "m23", "m30",
                    "m31", "m32", "m33"});
    method(type, "getRow0", &Matrix::getRow0);
    method(type, "getRow1", &Matrix::getRow1);
    method(type, "getRow2", &Matrix::getRow2);
    method(type, "getRow3", &Matrix::getRow3);
    method(type, "getCol0", &Matrix::getCol0);
    method(type, "getCol1", &Matrix::getCol1);
    method(type, "getCol2", &Matrix::getCol2);
    method(type, "getCol3", &Matrix::getCol3);
    method(type, "get", &Matrix::get, {"row", "column"}, "Each 0 to 3; 0 outside.");
    method(type, "set", &Matrix::set, {"row", "column", "value"}, "Each 0 to 3; false outside.");
}

void declareInverses(UserType& type) {
    const ovMemory::StringView help = "All zero when there is none.";
    method(type, "getInverseMat2", &Matrix::getInverseMat2, {}, help);
    method(type, "getInverseMat3", &Matrix::getInverseMat3, {}, help);
    method(type, "getInverseMat4", &Matrix::getInverseMat4, {}, help);
    method(type, "getTranspose", &Matrix::getTranspose);
    const ovMemory::StringView inPlace = "Becomes its inverse; false, unchanged, when there is none.";
    method(type, "inverseMat2", &Matrix::inverseMat2, {}, inPlace);
    method(type, "inverseMat3", &Matrix::inverseMat3, {}, inPlace);
    method(type, "inverseMat4", &Matrix::inverseMat4, {}, inPlace);
    method(type, "transpose", &Matrix::transpose);
}

void declareTransformations(UserType& type) {
    method(type, "getPositionComponent", &Matrix::getPositionComponent);
    method(type, "getOrientationComponent", &Matrix::getOrientationComponent);
    method(type, "getScaleComponent", &Matrix::getScaleComponent);
    method(type, "getDecomposed", &Matrix::getDecomposed, {"position", "scale", "orientation"},
           "Sets all three.");
    method(
        type, "setToViewMatrixDirection",
        [](Matrix& self, const Vector& position, const Vector& direction, const Vector* up) {
            self.setToViewMatrixDirection(position, direction, up ? *up : Vector());
        },
        {"position", "direction", "up"}, "A camera's view; without up that is (0, 1, 0).");
    method(type, "setToPerspectiveMatrix", &Matrix::setToPerspectiveMatrix,
           {"verticalFieldOfView", "aspect", "near", "far"},
           "Full angle in radians, width / height; false, unchanged, for what makes no projection.");
    method(type, "setToOrthographicMatrix", &Matrix::setToOrthographicMatrix,
           {"width", "height", "near", "far"}, "False, unchanged, for what makes no projection.");
    method(type, "setPositionComponent", &Matrix::setPositionComponent, {"position"});
    method(type, "setOrientationComponent", &Matrix::setOrientationComponent, {"orientation"});
    method(type, "setScaleComponent", &Matrix::setScaleComponent, {"scale"});
    method(type, "setToTransformation", &Matrix::setToTransformation, {"position", "scale", "orientation"},
           "Points are scaled, then rotated, then moved.");
}

void declareScalars(UserType& type) {
    method(type, "getDeterminantMat2", &Matrix::getDeterminantMat2);
    method(type, "getDeterminantMat3", &Matrix::getDeterminantMat3);
    method(type, "getDeterminantMat4", &Matrix::getDeterminantMat4);
    method(type, "getTraceMat2", &Matrix::getTraceMat2);
    method(type, "getTraceMat3", &Matrix::getTraceMat3);
    method(type, "getTraceMat4", &Matrix::getTraceMat4);
}

} // namespace

void MatrixWrapper::updateEnvironment(ovScripts::Environment* environment) {
    UserType& type = *environment->getUserType(TYPE_NAME<Matrix>);
    type.setHelp("Four rows of four 32-bit floats, which multiplyMatrix column vectors.");
    declareMatrixMembers(type);
    declareMatrixOperators(type);
    declareElements(type);
    declareInverses(type);
    declareTransformations(type);
    declareScalars(type);
}

} // namespace ovMathsWrap
