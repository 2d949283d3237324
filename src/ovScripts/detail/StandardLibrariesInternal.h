// What of Lua's own libraries scripts see.
#pragma once

#include <lua.hpp>

namespace ovScripts::detail {

/// Opens what the environment's options allow. Compiled programs are refused everywhere: a forged one could
/// break the interpreter.
void openStandardLibraries(lua_State* lua);

} // namespace ovScripts::detail
