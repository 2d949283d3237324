// A pointer to an object that may be owned, borrowed, or the instance of its class.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Borrowed.h>

namespace ovMemory {

/// Holds an object of a class T that derives from ovCommon::MaybeSingletonClass<T> and Borrowable,
/// in one of three ways.
///
/// The instance is looked up each time, since anyone may kill it and make another; the other two are borrowed
/// pointers, so that an object that somebody else destroys leaves the holder empty. T may be incomplete where
/// only the holder itself is declared.
template <typename T>
class InstanceHolder {
public:
    InstanceHolder() = default;
    InstanceHolder(const InstanceHolder&) = delete;
    InstanceHolder& operator=(const InstanceHolder&) = delete;
    /// Deletes the object if it is owned.
    ~InstanceHolder() { _replace(HOLD::NOTHING, nullptr); }

    // Each of the three deletes the object held before, if that was owned and is another.

    /// Takes the ownership of an object.
    void own(T* object) { _replace(HOLD::OWNED, object); }
    /// Refers to an object of somebody else. Does nothing when it is the one that is owned.
    void borrow(T* object) {
        if (_hold != HOLD::OWNED || _object.get() != object)
            _replace(HOLD::BORROWED, object);
    }
    /// Refers to the instance of T, created when missing.
    void useInstance() {
        T::getInstance();
        _replace(HOLD::INSTANCE, nullptr);
    }

    /// The object, or null when there is none (any more).
    T* get() const { return _hold == HOLD::INSTANCE ? T::getInstanceIfExisting() : _object.get(); }

    /// Lets go of a borrowed object or the instance, which live on; keeps an owned object.
    void forgetUnlessOwned() {
        if (_hold != HOLD::OWNED)
            _replace(HOLD::NOTHING, nullptr);
    }
    /// Deletes an owned object, kills the instance, lets go of a borrowed object.
    void destroy() {
        if (_hold == HOLD::INSTANCE)
            T::kill();
        _replace(HOLD::NOTHING, nullptr);
    }

private:
    enum class HOLD { NOTHING, OWNED, BORROWED, INSTANCE };

    void _replace(HOLD hold, T* object) {
        // Through the base: T may keep its destructor private. The object is still held while it is
        // destroyed.
        if (_hold == HOLD::OWNED && _object.get() != object)
            delete static_cast<ovCommon::MaybeSingletonClass<T>*>(_object.get());
        _hold = hold;
        _object = object;
    }

    HOLD _hold = HOLD::NOTHING;
    Borrowed<T> _object;
};

} // namespace ovMemory
