// Pointers to resources that others own.
#pragma once

#include <ovCommon/Api.h>

namespace ovGraphics {

class Resource;

/// Part of Borrowed that does not depend on the type: a link of the resource's list of borrowers.
class OV_API BorrowedBase {
public:
    BorrowedBase(const BorrowedBase& other) { _borrow(other._resource); }
    BorrowedBase& operator=(const BorrowedBase& other);
    ~BorrowedBase() { _release(); }

protected:
    BorrowedBase() = default;
    void _borrow(Resource* resource);
    void _release();
    Resource* _resource = nullptr;

private:
    friend class Resource;
    BorrowedBase* _previous = nullptr;
    BorrowedBase* _next = nullptr;
};

/// A pointer to a resource owned elsewhere that becomes null when the resource is destroyed. As cheap to read
/// as a plain pointer; T must be complete where it is read.
template <typename T>
class Borrowed : public BorrowedBase {
public:
    Borrowed() = default;
    Borrowed(T* resource) { _borrow(resource); }
    Borrowed& operator=(T* resource) {
        _release();
        _borrow(resource);
        return *this;
    }
    T* get() const { return static_cast<T*>(_resource); }
    T* operator->() const { return get(); }
    explicit operator bool() const { return _resource != nullptr; }
};

} // namespace ovGraphics
