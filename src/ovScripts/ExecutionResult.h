// How the execution of a script or of a script's function ended.
#pragma once

#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovScripts {

/// Why an execution failed. The numbers are fixed: tasks choose their messages by them.
enum class EXECUTION_FAILURE_TYPE : unsigned int {
    NO_ERROR = 0,
    UNKNOWN = 1,
    INTERPRETER_UNKNOWN = 2, ///< the environment has no interpreter, or another one than the script
    OBJECT_INVALID = 3,      ///< what was to be called or serialised is gone, of another environment or kind
    BYTECODE_NOT_READY = 4,  ///< the script is not loaded
    RUNTIME = 5,             ///< the script raised an error
    MEMORY_ALLOCATION = 6,   ///< memory ran out, or the environment's limit of it was reached
    LIMIT_REACHED = 7        ///< the environment's limit of time or of steps was reached
};

inline constexpr ovMemory::EnumEntry<EXECUTION_FAILURE_TYPE> EXECUTION_FAILURE_TYPE_ENTRIES[] = {
    {EXECUTION_FAILURE_TYPE::NO_ERROR, "NO_ERROR"},
    {EXECUTION_FAILURE_TYPE::UNKNOWN, "UNKNOWN"},
    {EXECUTION_FAILURE_TYPE::INTERPRETER_UNKNOWN, "INTERPRETER_UNKNOWN"},
    {EXECUTION_FAILURE_TYPE::OBJECT_INVALID, "OBJECT_INVALID"},
    {EXECUTION_FAILURE_TYPE::BYTECODE_NOT_READY, "BYTECODE_NOT_READY"},
    {EXECUTION_FAILURE_TYPE::RUNTIME, "RUNTIME"},
    {EXECUTION_FAILURE_TYPE::MEMORY_ALLOCATION, "MEMORY_ALLOCATION"},
    {EXECUTION_FAILURE_TYPE::LIMIT_REACHED, "LIMIT_REACHED"},
};
constexpr ovMemory::EnumTable<EXECUTION_FAILURE_TYPE> enumTable(EXECUTION_FAILURE_TYPE) {
    return {"EXECUTION_FAILURE_TYPE", EXECUTION_FAILURE_TYPE_ENTRIES};
}

/// How an execution ended. The message is Result::error, "name:line: what is wrong" where the script says so.
struct ExecutionResult : ovMemory::Result {
    EXECUTION_FAILURE_TYPE failureType = EXECUTION_FAILURE_TYPE::NO_ERROR;
    /// The calls that led to the error, several lines; empty when none was running.
    ovMemory::String traceback;
};

} // namespace ovScripts
