// A base for classes that serve both as ordinary objects and as one object per process.
#pragma once

#include <ovCommon/Api.h>

namespace ovCommon {

/// Gives a class T an optional process-wide instance besides its ordinary objects.
///
/// T derives from MaybeSingletonClass<T> and has a constructor taking a bool (it may be private, with this
/// class as a friend); getInstance() calls it with true. The library that owns T instantiates this template
/// explicitly and its header declares that instantiation extern, so that the pointer is one per process even
/// when several shared libraries use T:
///
///     // Hub.h, before the class             // Hub.cpp
///     class Hub;                             template class ovCommon::MaybeSingletonClass<Hub>;
///     extern template class OV_API ovCommon::MaybeSingletonClass<Hub>;
///
/// Not locked: getInstance() and kill() belong to one thread.
template <typename T>
class OV_API MaybeSingletonClass {
public:
    MaybeSingletonClass(const MaybeSingletonClass&) = delete;
    MaybeSingletonClass& operator=(const MaybeSingletonClass&) = delete;

    /// Clears the instance pointer when this object is the instance, whichever way it is deleted.
    virtual ~MaybeSingletonClass();

    /// The instance, created on the first call. Never null.
    static T* getInstance();

    /// The same object as getInstance().
    static T& getInstanceRef();

    /// The instance, or null; never creates it.
    static T* getInstanceIfExisting();

    /// Deletes the instance if there is one; afterwards there is none.
    static void kill();

    /// Whether this object is the instance.
    bool isTheSingletonInstance() const;

protected:
    MaybeSingletonClass() = default;

private:
    static T* _instance;
};

template <typename T>
T* MaybeSingletonClass<T>::_instance = nullptr;

template <typename T>
MaybeSingletonClass<T>::~MaybeSingletonClass() {
    if (isTheSingletonInstance())
        _instance = nullptr;
}

template <typename T>
T* MaybeSingletonClass<T>::getInstance() {
    if (!_instance)
        _instance = new T(true);
    return _instance;
}

template <typename T>
T& MaybeSingletonClass<T>::getInstanceRef() {
    return *getInstance();
}

template <typename T>
T* MaybeSingletonClass<T>::getInstanceIfExisting() {
    return _instance;
}

template <typename T>
void MaybeSingletonClass<T>::kill() {
    // Through the base: T may keep its destructor private.
    delete static_cast<MaybeSingletonClass*>(_instance);
    _instance = nullptr;
}

template <typename T>
bool MaybeSingletonClass<T>::isTheSingletonInstance() const {
    return _instance != nullptr && this == static_cast<const MaybeSingletonClass*>(_instance);
}

} // namespace ovCommon
