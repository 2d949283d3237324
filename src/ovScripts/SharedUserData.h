// Objects of scripts on their way between environments.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovScripts {

namespace detail {
struct SharedObject;
}

/// User data taken out of one environment for another one, perhaps on another thread; see
/// Environment::share().
///
/// An object that scripts own lives for as long as any environment or any SharedUserData holds it. An object
/// that belongs to the engine is not held; it belongs to its thread, and the environment of a worker can pass
/// it on but not use it.
class OV_API SharedUserData {
public:
    /// Holds nothing.
    SharedUserData() noexcept;
    explicit SharedUserData(ovMemory::UniquePtr<detail::SharedObject> object);
    SharedUserData(const SharedUserData& other);
    SharedUserData(SharedUserData&& other) noexcept;
    SharedUserData& operator=(const SharedUserData& other);
    SharedUserData& operator=(SharedUserData&& other) noexcept;
    ~SharedUserData();

    /// The object; null when nothing is held or when it is gone.
    void* getObject() const;
    /// Full name of its user type; empty when nothing is held.
    ovMemory::StringView getTypeName() const;
    explicit operator bool() const { return _object != nullptr; }

    const detail::SharedObject* getShared() const { return _object.get(); }

private:
    ovMemory::UniquePtr<detail::SharedObject> _object;
};

} // namespace ovScripts
