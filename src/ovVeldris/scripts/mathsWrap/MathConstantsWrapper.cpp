#include <ovMaths/MathConstants.h>
#include <ovScripts/Environment.h>
#include <ovVeldris/scripts/mathsWrap/MathConstantsWrapper.h>

namespace ovMathsWrap {

void MathConstantsWrapper::updateEnvironment(ovScripts::Environment* environment) {
    using ovMaths::MathConstants;
    ovScripts::Namespace& space = *environment->getNamespace("ovMaths.MathConstants");
    space.addConstant("PI", MathConstants::PI);
    space.addConstant("PI_SQRT", MathConstants::PI_SQRT);
    space.addConstant("PI_2", MathConstants::PI_2);
    space.addConstant("PI_4", MathConstants::PI_4);
    space.addConstant("PI_OVER_2", MathConstants::PI_OVER_2);
    space.addConstant("PI_OVER_3", MathConstants::PI_OVER_3);
    space.addConstant("PI_OVER_4", MathConstants::PI_OVER_4);
    space.addConstant("PI_OVER_6", MathConstants::PI_OVER_6);
    space.addConstant("PI_OVER_8", MathConstants::PI_OVER_8);
}

} // namespace ovMathsWrap
