// The functions that the interpreter calls.
#pragma once

#include <ovScripts/detail/LuaStateInternal.h>

namespace ovScripts::detail {

// Each expects what it works on as light user data in its first upvalue, and the type's table of methods and
// of members in the next ones where it looks members up.

int callFunction(lua_State* lua);       ///< upvalue: Function
int callConstructor(lua_State* lua);    ///< upvalue: Function; the first argument is the type's table
int readMember(lua_State* lua);         ///< upvalues: UserType, methods, members
int writeMember(lua_State* lua);        ///< upvalues: UserType, methods, members
int isSameObject(lua_State* lua);       ///< equality of types that give it no meaning of their own
int printObject(lua_State* lua);        ///< text of types that give it no meaning of their own
int refuseConstruction(lua_State* lua); ///< upvalue: UserType; for calls of one without a constructor
int refuseMethod(lua_State* lua);       ///< upvalue: UserType; for names that its table of methods lacks

} // namespace ovScripts::detail
