// Operands of operators that take more than one type.
#pragma once

#include <ovVeldris/scripts/commonWrap/Bind.h>

namespace ovMathsWrap {

/// The object of an operand, or null for anything else.
template <typename T>
const T* objectOf(const ovScripts::FunctionParameter& operand) {
    const bool isOne = operand.getUserDataTypeName() == ovCommonWrap::TYPE_NAME<T>;
    return isOne ? operand.getValueAsUserData<T>() : nullptr;
}

inline bool isNumber(const ovScripts::FunctionParameter& operand) {
    using ovScripts::FUNCTION_PARAMETER_TYPE;
    return operand.getType() == FUNCTION_PARAMETER_TYPE::INT ||
           operand.getType() == FUNCTION_PARAMETER_TYPE::DOUBLE;
}

/// Adds the operator ==: operands of other types are not equal, which is no error.
template <typename T>
void equalOperator(ovScripts::UserType& type) {
    using ovScripts::FunctionParameter;
    ovCommonWrap::binaryOperator(type, ovScripts::USER_TYPE_OPERATOR::EQUAL,
                                 [](const FunctionParameter& left, const FunctionParameter& right) {
                                     const T* first = objectOf<T>(left);
                                     const T* second = objectOf<T>(right);
                                     return first && second && *first == *second;
                                 });
}

} // namespace ovMathsWrap
