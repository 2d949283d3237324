// The languages that scripts are written in.
#pragma once

#include <ovMemory/Enumeration.h>

namespace ovScripts {

/// The language of a script or an environment. The numbers are fixed: scripts see them.
enum class INTERPRETER : unsigned int {
    UNKNOWN = 0, ///< none was chosen
    LUA = 1      ///< Lua 5.4
};

inline constexpr ovMemory::EnumEntry<INTERPRETER> INTERPRETER_ENTRIES[] = {
    {INTERPRETER::UNKNOWN, "UNKNOWN"},
    {INTERPRETER::LUA, "LUA"},
};
constexpr ovMemory::EnumTable<INTERPRETER> enumTable(INTERPRETER) {
    return {"INTERPRETER", INTERPRETER_ENTRIES};
}

} // namespace ovScripts
