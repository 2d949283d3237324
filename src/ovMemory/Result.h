// How a call ended, and why.
#pragma once

#include <ovMemory/Enumeration.h>
#include <utility>

namespace ovMemory {

/// How far a call came. The numbers are those of the results of declarations, which scripts see.
enum class RESULT_STATUS : unsigned int {
    DONE = 0,        ///< what was asked for
    PARTLY_DONE = 1, ///< what was asked for, but for what the warning says
    FAILED = 2       ///< nothing; the world is as it was
};

inline constexpr EnumEntry<RESULT_STATUS> RESULT_STATUS_ENTRIES[] = {
    {RESULT_STATUS::DONE, "DONE"},
    {RESULT_STATUS::PARTLY_DONE, "PARTLY_DONE"},
    {RESULT_STATUS::FAILED, "FAILED"},
};
constexpr EnumTable<RESULT_STATUS> enumTable(RESULT_STATUS) {
    return {"RESULT_STATUS", RESULT_STATUS_ENTRIES};
}

/// What every call that can fail gives back; records that hand something over derive from it. Messages, the
/// command line and scripts show it without knowing what was called.
struct Result {
    /// One line: what failed, on which object, why, and what to do. Empty unless the call failed.
    std::string error;
    /// Where: a file, a line of it ("source:12"), a member; empty when it concerns the whole input.
    std::string place;
    /// One line: what was taken with a doubt, or changed. Often empty.
    std::string warning;

    RESULT_STATUS getStatus() const {
        if (!error.empty())
            return RESULT_STATUS::FAILED;
        return warning.empty() ? RESULT_STATUS::DONE : RESULT_STATUS::PARTLY_DONE;
    }

    /// Whether the call did not fail.
    explicit operator bool() const { return error.empty(); }
};

/// A result of a failure, of Result or a type that derives from it.
template <typename R = Result>
R failed(std::string error, std::string place = {}) {
    R result;
    result.error = std::move(error);
    result.place = std::move(place);
    return result;
}

} // namespace ovMemory
