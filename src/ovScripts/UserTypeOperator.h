// The operators that user types can give a meaning.
#pragma once

#include <ovMemory/Enumeration.h>

namespace ovScripts {

/// An operator of scripts. The numbers are fixed: declarations use them.
enum class USER_TYPE_OPERATOR : unsigned int {
    TO_STRING = 0, ///< tostring(a)
    CALL = 1,      ///< a(...)
    ADDITION = 2,
    SUBTRACTION = 3,
    MULTIPLICATION = 4,
    DIVISION = 5,
    MODULO = 6,
    POWER = 7,
    UNARY_MINUS = 8,
    EQUAL = 9, ///< a == b, a ~= b; without it two values are equal when they are the same object of C++
    LESS = 10,
    LESS_OR_EQUAL = 11,
    CONCATENATION = 12,
    LENGTH = 13 ///< #a
};

inline constexpr ovMemory::EnumEntry<USER_TYPE_OPERATOR> USER_TYPE_OPERATOR_ENTRIES[] = {
    {USER_TYPE_OPERATOR::TO_STRING, "TO_STRING"},
    {USER_TYPE_OPERATOR::CALL, "CALL"},
    {USER_TYPE_OPERATOR::ADDITION, "ADDITION"},
    {USER_TYPE_OPERATOR::SUBTRACTION, "SUBTRACTION"},
    {USER_TYPE_OPERATOR::MULTIPLICATION, "MULTIPLICATION"},
    {USER_TYPE_OPERATOR::DIVISION, "DIVISION"},
    {USER_TYPE_OPERATOR::MODULO, "MODULO"},
    {USER_TYPE_OPERATOR::POWER, "POWER"},
    {USER_TYPE_OPERATOR::UNARY_MINUS, "UNARY_MINUS"},
    {USER_TYPE_OPERATOR::EQUAL, "EQUAL"},
    {USER_TYPE_OPERATOR::LESS, "LESS"},
    {USER_TYPE_OPERATOR::LESS_OR_EQUAL, "LESS_OR_EQUAL"},
    {USER_TYPE_OPERATOR::CONCATENATION, "CONCATENATION"},
    {USER_TYPE_OPERATOR::LENGTH, "LENGTH"},
};
constexpr ovMemory::EnumTable<USER_TYPE_OPERATOR> enumTable(USER_TYPE_OPERATOR) {
    return {"USER_TYPE_OPERATOR", USER_TYPE_OPERATOR_ENTRIES};
}

} // namespace ovScripts
