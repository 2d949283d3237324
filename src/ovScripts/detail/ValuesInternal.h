// Values between the interpreter's stack and C++.
#pragma once

#include <ovScripts/detail/LuaStateInternal.h>

namespace ovScripts::detail {

struct UserData;

/// Fills and reads values of C++ for the interpreter's side.
class ParameterAccess {
public:
    /// Reads an argument if it is what was declared. @return false for anything else
    static bool read(lua_State* lua, int position, const FunctionArgument& declared,
                     FunctionParameter& value);
    /// Reads any value as what it is; tables, functions and others by reference.
    static void readAny(lua_State* lua, int position, FunctionParameter& value);
    /// Puts a value on the stack; an error of the interpreter when it cannot, as for an undeclared type.
    static void push(lua_State* lua, const FunctionParameter& value);
    /// What a message says of a value that does not fit: "got nil", "got a number out of range".
    static ovMemory::String describe(lua_State* lua, int position, const FunctionArgument& declared);
    /// Makes a value outlive its place on the stack: with a text of its own in place of a view into the
    /// interpreter's memory.
    static void own(FunctionParameter& value);

private:
    static bool _readInt(lua_State* lua, int position, FunctionParameter& value);
    static bool _readNumber(lua_State* lua, int position, FUNCTION_PARAMETER_TYPE type,
                            FunctionParameter& value);
    static bool _readString(lua_State* lua, int position, FunctionParameter& value);
    static bool _readUserData(lua_State* lua, int position, const FunctionArgument& declared,
                              FunctionParameter& value);
    static void _readReference(lua_State* lua, int position, FunctionParameter& value);
    static void _pushUserData(lua_State* lua, const FunctionParameter& value);
};

/// What a message calls a declared type: "string", "ovMaths.Vector".
ovMemory::String expectationOf(const FunctionArgument& declared);

} // namespace ovScripts::detail
