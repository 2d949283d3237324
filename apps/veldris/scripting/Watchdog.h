// The end of a process that does not end by itself.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace veldris {

/// Calls something when it lives longer than so many seconds, on a thread of its own.
class Watchdog {
public:
    Watchdog(double seconds, std::function<void()> bark);
    /// In time.
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    std::mutex _mutex;
    std::condition_variable _ended;
    bool _isEnded = false;
    std::thread _thread;
};

} // namespace veldris
