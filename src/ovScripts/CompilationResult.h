// How the compilation of a script ended.
#pragma once

#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovScripts {

/// Why a script was not compiled. The numbers are fixed: scripts see them.
enum class COMPILATION_FAILURE_TYPE : unsigned int {
    NO_ERROR = 0,
    UNKNOWN = 1,
    INTERPRETER_UNKNOWN = 2, ///< the script says no language
    SYNTAX = 3,              ///< against the grammar, or compiled already: only texts are taken
    MEMORY_ALLOCATION = 4
};

inline constexpr ovMemory::EnumEntry<COMPILATION_FAILURE_TYPE> COMPILATION_FAILURE_TYPE_ENTRIES[] = {
    {COMPILATION_FAILURE_TYPE::NO_ERROR, "NO_ERROR"},
    {COMPILATION_FAILURE_TYPE::UNKNOWN, "UNKNOWN"},
    {COMPILATION_FAILURE_TYPE::INTERPRETER_UNKNOWN, "INTERPRETER_UNKNOWN"},
    {COMPILATION_FAILURE_TYPE::SYNTAX, "SYNTAX"},
    {COMPILATION_FAILURE_TYPE::MEMORY_ALLOCATION, "MEMORY_ALLOCATION"},
};
constexpr ovMemory::EnumTable<COMPILATION_FAILURE_TYPE> enumTable(COMPILATION_FAILURE_TYPE) {
    return {"COMPILATION_FAILURE_TYPE", COMPILATION_FAILURE_TYPE_ENTRIES};
}

/// How the compilation of a script ended. Scripts see the members by these names.
struct CompilationResult {
    /// "name:line: what is wrong"; empty after a success.
    ovMemory::String _failureMessage;
    COMPILATION_FAILURE_TYPE _failureType = COMPILATION_FAILURE_TYPE::NO_ERROR;
    bool _success = true;
};

} // namespace ovScripts
