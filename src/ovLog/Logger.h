// The interface of whoever receives log lines.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovLog {

using StringView = ovMemory::StringView;

/// A receiver of log lines. The host implements it, or uses ConsoleLogger.
class OV_API Logger {
public:
    virtual ~Logger();

    /// Receives one message, without a line end, and the name of the class or operation that sends it.
    /// The views are valid during the call only. A logger used by several threads protects itself.
    virtual void log(StringView message, StringView sender) = 0;
};

} // namespace ovLog
