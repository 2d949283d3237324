// Pointers to objects that others own, which become null when the object goes.
#pragma once

#include <type_traits>
#include <utility>

namespace ovMemory {

class BorrowedBase;

/// Base of every object that can be pointed at from outside: it tells its borrowers when it is destroyed.
///
/// A copy is another object: it starts without borrowers, and assigning to an object leaves its own alone.
/// Object and borrowers belong to one thread.
class Borrowable {
protected:
    Borrowable() = default;
    Borrowable(const Borrowable&) {}
    // Takes nothing over, from itself neither.
    Borrowable& operator=(const Borrowable&) { return *this; } // NOLINT(bugprone-unhandled-self-assignment)
    ~Borrowable() { _forgetBorrowers(); }

    /// Makes every pointer to this object null. For destructors that call code of others, which must not
    /// find an object that is half gone.
    inline void _forgetBorrowers();

private:
    friend class BorrowedBase;
    BorrowedBase* _borrowers = nullptr;
};

/// Part of Borrowed that does not depend on the type: a link of the object's list of borrowers.
class BorrowedBase {
public:
    BorrowedBase(const BorrowedBase& other) { _borrow(other._object); }
    BorrowedBase& operator=(const BorrowedBase& other) {
        if (this != &other)
            _borrowAnother(other._object);
        return *this;
    }
    ~BorrowedBase() { _release(); }

protected:
    BorrowedBase() = default;

    void _borrow(Borrowable* object) {
        _object = object;
        if (!object)
            return;
        _previous = nullptr;
        _next = object->_borrowers;
        if (_next)
            _next->_previous = this;
        object->_borrowers = this;
    }

    void _release() {
        if (!_object)
            return;
        (_previous ? _previous->_next : _object->_borrowers) = _next;
        if (_next)
            _next->_previous = _previous;
        _object = nullptr;
    }

    void _borrowAnother(Borrowable* object) {
        _release();
        _borrow(object);
    }

    Borrowable* _object = nullptr;

private:
    friend class Borrowable;
    BorrowedBase* _previous = nullptr;
    BorrowedBase* _next = nullptr;
};

void Borrowable::_forgetBorrowers() {
    for (BorrowedBase* borrower = std::exchange(_borrowers, nullptr); borrower; borrower = borrower->_next)
        borrower->_object = nullptr;
}

/// A pointer to a Borrowable that becomes null when the object is destroyed. As cheap to read as a plain
/// pointer. T must be complete where the pointer is set or read.
///
/// A link in a list that hangs on the object: nothing is counted or allocated, and setting costs a few
/// stores.
template <typename T>
class Borrowed : public BorrowedBase {
public:
    Borrowed() = default;
    Borrowed(T* object) { _borrow(_toBase(object)); }
    Borrowed& operator=(T* object) {
        _borrowAnother(_toBase(object));
        return *this;
    }

    /// The object; null when none was given or it was destroyed.
    T* get() const { return static_cast<T*>(_object); }
    T* operator->() const { return get(); }
    T& operator*() const { return *get(); }
    explicit operator bool() const { return _object != nullptr; }

private:
    // Through the unqualified type: a borrower of a constant object changes its list of borrowers only.
    static Borrowable* _toBase(T* object) { return const_cast<std::remove_const_t<T>*>(object); }
};

} // namespace ovMemory
