#include <ovMaths/Vector.h>
#include <ovVeldris/scripts/mathsWrap/Operands.h>
#include <ovVeldris/scripts/mathsWrap/VectorWrapper.h>

namespace ovMathsWrap {

namespace {

using namespace ovCommonWrap;
using ovMaths::Vector;
using ovScripts::FunctionParameter;
using ovScripts::USER_TYPE_OPERATOR;
using ovScripts::UserType;

void declareVectorMembers(UserType& type) {
    ovScripts::Function* constructor = type.setConstructor([](Arguments numbers) -> void* {
        return new Vector(numbers[0].getValueAsFloat(), numbers[1].getValueAsFloat(),
                          numbers[2].getValueAsFloat(), numbers[3].getValueAsFloat());
    });
    for (const char* name : {"x", "y", "z", "w"})
        constructor->addOptionalParameter(ovScripts::FUNCTION_PARAMETER_TYPE::FLOAT, {}, name);
    constructor->setHelp("Numbers that are left out are 0.");
    type.setValueType<Vector>();
    field(type, "_x", &Vector::x);
    field(type, "_y", &Vector::y);
    field(type, "_z", &Vector::z);
    field(type, "_w", &Vector::w);
}

FunctionParameter multiplyVector(const FunctionParameter& left, const FunctionParameter& right) {
    const Vector* first = objectOf<Vector>(left);
    const Vector* second = objectOf<Vector>(right);
    if (first && second)
        return toScript(*first * *second);
    if (first && isNumber(right))
        return toScript(*first * right.getValueAsFloat());
    if (second && isNumber(left))
        return toScript(*second * left.getValueAsFloat());
    return FunctionParameter::error("expected two ovMaths.Vector, or one and a number");
}

FunctionParameter divideVector(const Vector& left, const FunctionParameter& right) {
    if (const Vector* second = objectOf<Vector>(right))
        return toScript(left / *second);
    if (isNumber(right))
        return toScript(left / right.getValueAsFloat());
    return FunctionParameter::error("expected an ovMaths.Vector or a number behind the /");
}

void declareVectorOperators(UserType& type) {
    bind(*type.addOperator(USER_TYPE_OPERATOR::TO_STRING), &Vector::toString);
    binaryOperator(type, USER_TYPE_OPERATOR::ADDITION,
                   [](const Vector& left, const Vector& right) { return left + right; });
    binaryOperator(type, USER_TYPE_OPERATOR::SUBTRACTION,
                   [](const Vector& left, const Vector& right) { return left - right; });
    binaryOperator(type, USER_TYPE_OPERATOR::MULTIPLICATION, multiplyVector)
        .setHelp("Element by element; one of the two may be a number.");
    binaryOperator(type, USER_TYPE_OPERATOR::DIVISION, divideVector)
        .setHelp("Element by element, or by a number.");
    equalOperator<Vector>(type);
}

void declareLengths(UserType& type) {
    method(type, "getLengthVec2", &Vector::getLengthVec2);
    method(type, "getLengthVec3", &Vector::getLengthVec3);
    method(type, "getLengthVec4", &Vector::getLengthVec4);
    method(type, "getLengthSquaredVec2", &Vector::getLengthSquaredVec2);
    method(type, "getLengthSquaredVec3", &Vector::getLengthSquaredVec3);
    method(type, "getLengthSquaredVec4", &Vector::getLengthSquaredVec4);
    const ArgumentNames other = {"other"};
    method(type, "getDistanceVec2", &Vector::getDistanceVec2, other);
    method(type, "getDistanceVec3", &Vector::getDistanceVec3, other);
    method(type, "getDistanceVec4", &Vector::getDistanceVec4, other);
    method(type, "getDistanceSquaredVec2", &Vector::getDistanceSquaredVec2, other);
    method(type, "getDistanceSquaredVec3", &Vector::getDistanceSquaredVec3, other);
    method(type, "getDistanceSquaredVec4", &Vector::getDistanceSquaredVec4, other);
}

void declareDirections(UserType& type) {
    const ovMemory::StringView inPlace = "Scales itself to length 1; what has no length becomes zero.";
    method(type, "normalizeVec2", &Vector::normalizeVec2, {}, inPlace);
    method(type, "normalizeVec3", &Vector::normalizeVec3, {}, inPlace);
    method(type, "normalizeVec4", &Vector::normalizeVec4, {}, inPlace);
    method(type, "getNormalizedVec2", &Vector::getNormalizedVec2);
    method(type, "getNormalizedVec3", &Vector::getNormalizedVec3);
    method(type, "getNormalizedVec4", &Vector::getNormalizedVec4);
    const ArgumentNames other = {"other"};
    method(type, "dotProductVec2", &Vector::dotProductVec2, other);
    method(type, "dotProductVec3", &Vector::dotProductVec3, other);
    method(type, "dotProductVec4", &Vector::dotProductVec4, other);
    method(type, "setAsCrossVec3", &Vector::setAsCrossVec3, {"first", "second"},
           "Becomes first x second; w stays.");
    method(type, "getCrossVec3", &Vector::getCrossVec3, other, "Itself x other, with w 0.");
}

void declareStatics(UserType& type) {
    staticFunction(type, "newVec2", &Vector::newVec2, {"x", "y"});
    staticFunction(type, "newVec3", &Vector::newVec3, {"x", "y", "z"});
    staticFunction(type, "newVec4", &Vector::newVec4, {"x", "y", "z", "w"});
    const ArgumentNames two = {"first", "second"};
    staticFunction(type, "distanceVec2", &Vector::distanceVec2, two);
    staticFunction(type, "distanceVec3", &Vector::distanceVec3, two);
    staticFunction(type, "distanceVec4", &Vector::distanceVec4, two);
    staticFunction(type, "distanceSquaredVec2", &Vector::distanceSquaredVec2, two);
    staticFunction(type, "distanceSquaredVec3", &Vector::distanceSquaredVec3, two);
    staticFunction(type, "distanceSquaredVec4", &Vector::distanceSquaredVec4, two);
    staticFunction(type, "dotVec2", &Vector::dotVec2, two);
    staticFunction(type, "dotVec3", &Vector::dotVec3, two);
    staticFunction(type, "dotVec4", &Vector::dotVec4, two);
    staticFunction(type, "crossVec3", &Vector::crossVec3, two);
}

} // namespace

void VectorWrapper::updateEnvironment(ovScripts::Environment* environment) {
    UserType& type = *environment->getUserType(TYPE_NAME<Vector>);
    type.setHelp("Four 32-bit floats; operations named Vec2 and Vec3 use the first ones.");
    declareVectorMembers(type);
    declareVectorOperators(type);
    declareLengths(type);
    declareDirections(type);
    declareStatics(type);
}

} // namespace ovMathsWrap
