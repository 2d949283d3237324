#include <veldris/scripting/Watchdog.h>

#include <chrono>
#include <utility>

namespace veldris {

Watchdog::Watchdog(double seconds, std::function<void()> bark)
    : _thread([this, seconds, bark = std::move(bark)] {
        std::unique_lock lock(_mutex);
        if (!_ended.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return _isEnded; }))
            bark();
    }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(_mutex);
        _isEnded = true;
    }
    _ended.notify_all();
    _thread.join();
}

} // namespace veldris
