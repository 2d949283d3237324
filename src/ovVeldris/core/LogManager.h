// The channel through which the library reports problems.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovLog/Logger.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {
class LogManager;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovVeldris::LogManager>;

namespace ovVeldris {

class System;

/// Forwards each message with its sender to the receiver that the host installs, unchanged: no prefix, time,
/// level or line end is added. Without a receiver messages are dropped.
///
/// Not locked: a receiver that several threads reach protects itself.
class OV_API LogManager : public ovCommon::MaybeSingletonClass<LogManager>, public ovMemory::Borrowable {
public:
    /// A log manager without a receiver.
    LogManager();
    ~LogManager() override;

    /// Not owned; lives while it is installed. Null switches logging off.
    void setReceiver(ovLog::Logger* receiver) { _receiver = receiver; }
    ovLog::Logger* getReceiver() const { return _receiver; }

    /// @param sender name of the reporting class or operation, without namespace
    void log(ovMemory::StringView message, ovMemory::StringView sender);

private:
    friend class ovCommon::MaybeSingletonClass<LogManager>;

    explicit LogManager(bool);

    ovLog::Logger* _receiver = nullptr;
};

/// Sends a message through the log manager of a system: how every class of the library logs. Does nothing
/// when the system is null or has no log manager, as after System::shutdown().
OV_API void logMessage(const System* system, ovMemory::StringView message, ovMemory::StringView sender);

} // namespace ovVeldris
