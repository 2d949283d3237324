// Holds on objects of the interpreter.
#pragma once

#include <ovScripts/ScriptObjectReference.h>
#include <ovScripts/detail/LuaStateInternal.h>

namespace ovScripts::detail {

/// What a ScriptObjectReference holds.
struct ObjectSlot {
    ovMemory::Borrowed<Environment> environment;
    int reference = 0;
};

/// Makes and reads references for the interpreter's side.
class ReferenceAccess {
public:
    /// Takes the value on top of the stack off it. Nil gives an empty reference. May raise an error of the
    /// interpreter.
    static ScriptObjectReference take(lua_State* lua);
    /// Puts the object on the stack; nil for an empty reference. @return false, with nothing on the stack,
    /// when it belongs to another environment
    static bool push(lua_State* lua, const ScriptObjectReference& reference);
};

} // namespace ovScripts::detail
