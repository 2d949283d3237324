#include <ovGraphics/resources/Borrowed.h>

#include <ovGraphics/resources/Resource.h>

namespace ovGraphics {

BorrowedBase& BorrowedBase::operator=(const BorrowedBase& other) {
    if (this == &other)
        return *this;
    _release();
    _borrow(other._resource);
    return *this;
}

void BorrowedBase::_borrow(Resource* resource) {
    _resource = resource;
    if (!resource)
        return;
    _previous = nullptr;
    _next = resource->_borrowers;
    if (_next)
        _next->_previous = this;
    resource->_borrowers = this;
}

void BorrowedBase::_release() {
    if (!_resource)
        return;
    if (_previous)
        _previous->_next = _next;
    else
        _resource->_borrowers = _next;
    if (_next)
        _next->_previous = _previous;
    _resource = nullptr;
}

} // namespace ovGraphics
