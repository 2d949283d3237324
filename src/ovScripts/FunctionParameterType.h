// The kinds of values that functions declare.
#pragma once

#include <ovMemory/Enumeration.h>

namespace ovScripts {

/// What a function expects of an argument, or what a value is. The numbers are fixed: declarations use them.
enum class FUNCTION_PARAMETER_TYPE : unsigned int {
    VOID = 0, ///< nothing: nil
    BOOL = 1,
    INT = 2,           ///< a whole number; a float that is one, as 2.0, is taken, a text is not
    FLOAT = 3,         ///< a number, rounded to 32 bits
    DOUBLE = 4,        ///< a number
    STRING = 5,        ///< bytes; a number is not taken
    USER_DATA_PTR = 6, ///< an object of C++, of the named type or, without a name, of any; not nil
    USER_DATA = 7,     ///< an object of C++ of the named type, or nil
    FUNCTION = 8,      ///< a function of a script
    SCRIPT_OBJECT = 9, ///< any value of a script, held by reference
    ANY = 10           ///< any value; tables and functions by reference, the others as what they are
};

inline constexpr ovMemory::EnumEntry<FUNCTION_PARAMETER_TYPE> FUNCTION_PARAMETER_TYPE_ENTRIES[] = {
    {FUNCTION_PARAMETER_TYPE::VOID, "VOID"},
    {FUNCTION_PARAMETER_TYPE::BOOL, "BOOL"},
    {FUNCTION_PARAMETER_TYPE::INT, "INT"},
    {FUNCTION_PARAMETER_TYPE::FLOAT, "FLOAT"},
    {FUNCTION_PARAMETER_TYPE::DOUBLE, "DOUBLE"},
    {FUNCTION_PARAMETER_TYPE::STRING, "STRING"},
    {FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "USER_DATA_PTR"},
    {FUNCTION_PARAMETER_TYPE::USER_DATA, "USER_DATA"},
    {FUNCTION_PARAMETER_TYPE::FUNCTION, "FUNCTION"},
    {FUNCTION_PARAMETER_TYPE::SCRIPT_OBJECT, "SCRIPT_OBJECT"},
    {FUNCTION_PARAMETER_TYPE::ANY, "ANY"},
};
constexpr ovMemory::EnumTable<FUNCTION_PARAMETER_TYPE> enumTable(FUNCTION_PARAMETER_TYPE) {
    return {"FUNCTION_PARAMETER_TYPE", FUNCTION_PARAMETER_TYPE_ENTRIES};
}

} // namespace ovScripts
