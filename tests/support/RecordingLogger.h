// A log receiver for tests that keeps what it is told.
#pragma once

#include <mutex>
#include <ovLog/Logger.h>
#include <ovMemory/Memory.h>

/// Keeps every message with its sender, in the order of arrival. Threads may log at once; the list is read
/// when they are done.
class RecordingLogger : public ovLog::Logger {
public:
    struct Message {
        ovMemory::String message;
        ovMemory::String sender;
        bool operator==(const Message&) const = default;
    };

    using Messages = ovMemory::Buffer<Message>;

    Messages messages;

    void log(ovLog::StringView message, ovLog::StringView sender) override {
        const std::lock_guard lock(_mutex);
        messages.push_back({ovMemory::String(message), ovMemory::String(sender)});
    }

    /// Whether some message contains the text.
    bool contains(ovMemory::StringView text) const {
        for (const Message& message : messages)
            if (message.message.find(text) != ovMemory::String::npos)
                return true;
        return false;
    }

    /// All messages as text, for a failed test's output.
    ovMemory::String getText() const {
        ovMemory::String text;
        for (const Message& message : messages)
            text += "[" + message.sender + "] " + message.message + "\n";
        return text;
    }

private:
    std::mutex _mutex;
};
