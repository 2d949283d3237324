// Objects of scripts as bytes.
#pragma once

#include <ovScripts/detail/LuaStateInternal.h>

namespace ovScripts::detail {

/// Writes the object on top of the stack, see Environment::serializeScriptObject(). An error of the
/// interpreter for what cannot be written, which names where it lies.
ovMemory::Buffer<unsigned char> serialize(lua_State* lua, bool forwardOwnership);

/// Puts what serialize() of this process wrote on the stack; an error of the interpreter for everything else.
void deserialize(lua_State* lua, ovMemory::BufferView<const unsigned char> bytes);

/// Ends the objects that an environment serialised to be taken over and that nobody took.
void forgetTickets(const Environment& environment);

} // namespace ovScripts::detail
