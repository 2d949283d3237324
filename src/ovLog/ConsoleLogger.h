// A log receiver that prints to the process' own streams.
#pragma once

#include <ovLog/Logger.h>
#include <ovMemory/Enumeration.h>

namespace ovLog {

/// Which stream of the process a ConsoleLogger prints to.
enum class CONSOLE_STREAM {
    STANDARD_ERROR,
    STANDARD_OUTPUT,
};

inline constexpr ovMemory::EnumEntry<CONSOLE_STREAM> CONSOLE_STREAM_ENTRIES[] = {
    {CONSOLE_STREAM::STANDARD_ERROR, "STANDARD_ERROR"},
    {CONSOLE_STREAM::STANDARD_OUTPUT, "STANDARD_OUTPUT"},
};
constexpr ovMemory::EnumTable<CONSOLE_STREAM> enumTable(CONSOLE_STREAM) {
    return {"CONSOLE_STREAM", CONSOLE_STREAM_ENTRIES};
}

/// Prints each message as one line, "[sender] message", and flushes it at once. Further lines of a message
/// that has line breaks are indented by four spaces, so that a "[" in the first column always begins a
/// message.
///
/// Threads may share one object or use several: lines never mix. A stream that cannot be written to (closed,
/// a full disk) loses the line and nothing else.
class OV_API ConsoleLogger : public Logger {
public:
    explicit ConsoleLogger(CONSOLE_STREAM stream = CONSOLE_STREAM::STANDARD_ERROR);
    ~ConsoleLogger() override;
    ConsoleLogger(const ConsoleLogger&) = delete;
    ConsoleLogger& operator=(const ConsoleLogger&) = delete;

    void log(StringView message, StringView sender) override;

private:
    struct Output;
    ovMemory::UniquePtr<Output> _output;
};

} // namespace ovLog
