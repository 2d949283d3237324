// The tables of namespaces and types inside the interpreter.
#pragma once

#include <ovScripts/detail/LuaStateInternal.h>

namespace ovScripts::detail {

/// Sets a field of the table on top of the stack to a function of the interpreter with its object.
inline void setFunctionField(lua_State* lua, ovMemory::StringView name, lua_CFunction function,
                             const void* object) {
    lua_pushlstring(lua, name.data(), name.size());
    lua_pushlightuserdata(lua, const_cast<void*>(object));
    lua_pushcclosure(lua, function, 1);
    lua_rawset(lua, -3);
}

/// Makes a table a member of the declared namespaces that its full name begins with, or a global; keeps it.
/// @return the interpreter's number of the hold; the table stays on the stack
inline int createNamedTable(lua_State* lua, ovMemory::StringView fullName) {
    lua_pushglobaltable(lua);
    for (std::size_t dot; (dot = fullName.find('.')) != ovMemory::StringView::npos;
         fullName.remove_prefix(dot + 1)) {
        lua_pushlstring(lua, fullName.data(), dot);
        if (lua_rawget(lua, -2) != LUA_TTABLE)
            luaL_error(lua, "the namespace was not declared");
        lua_remove(lua, -2);
    }
    lua_pushlstring(lua, fullName.data(), fullName.size());
    lua_newtable(lua);
    lua_pushvalue(lua, -1);
    lua_insert(lua, -4);
    lua_rawset(lua, -3);
    lua_pop(lua, 1);
    lua_pushvalue(lua, -1);
    return luaL_ref(lua, LUA_REGISTRYINDEX);
}

} // namespace ovScripts::detail
