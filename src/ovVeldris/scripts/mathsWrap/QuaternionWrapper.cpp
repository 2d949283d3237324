#include <ovMaths/Matrix.h>
#include <ovMaths/Quaternion.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/mathsWrap/QuaternionWrapper.h>

namespace ovMathsWrap {

void QuaternionWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    using ovMaths::Quaternion;
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<Quaternion>);
    type.setHelp("A rotation: (x, y, z) = axis * sin(angle / 2), w = cos(angle / 2).");
    type.setConstructor([](Arguments) -> void* { return new Quaternion; })->setHelp("No rotation.");
    type.setValueType<Quaternion>();
    field(type, "_x", &Quaternion::x);
    field(type, "_y", &Quaternion::y);
    field(type, "_z", &Quaternion::z);
    field(type, "_w", &Quaternion::w);
    bind(*type.addOperator(ovScripts::USER_TYPE_OPERATOR::TO_STRING), &Quaternion::toString);

    method(type, "getAsEulerAngles", &Quaternion::getAsEulerAngles, {},
           "Angles in radians about x, y and z, as setFromEuler takes them.");
    method(type, "transform", &Quaternion::transform, {"vector"}, "The vector, rotated.");
    method(type, "apply", &Quaternion::apply, {"next"}, "Appends a rotation: first this one, then next.");
    method(type, "setFromAxisAngle", &Quaternion::setFromAxisAngle, {"axis", "angle"}, "Angle in radians.");
    method(type, "setFromEuler", &Quaternion::setFromEuler, {"pitch", "yaw", "roll"},
           "Angles in radians about x, y and z: first the roll, then the pitch, then the yaw.");
    method(type, "setFromRotationBetween", &Quaternion::setFromRotationBetween, {"from", "to"},
           "The smallest rotation from one direction to the other.");
    method(type, "setFromOrientationMatrix", &Quaternion::setFromOrientationMatrix, {"matrix"},
           "From a matrix that is a rotation.");
    method(type, "setFromTransformationMatrix", &Quaternion::setFromTransformationMatrix, {"matrix"},
           "From a matrix of translation, rotation and scale.");
    staticFunction(type, "newQuat4", &Quaternion::newQuat4, {"x", "y", "z", "w"});
}

} // namespace ovMathsWrap
