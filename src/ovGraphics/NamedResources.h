// Owned resources by name: the pattern that every manager of a graphics system shares.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/NameMap.h>

namespace ovGraphics {

class System;

/// Whether a graphics system is the singleton of its class. Null is not.
OV_API bool isTheSingleton(const System* system);

/// Owns the resources of one kind of one system by name. T has `static UniquePtr<T> create(System*)`.
/// The resources are destroyed with the manager; the system unloads them at shutdown().
template <typename T>
class NamedResources : public ovMemory::Borrowable {
public:
    explicit NamedResources(System* system)
        : _system(system) {}

    /// Whether this is the manager that getInstance() of its class gives: that of the System singleton.
    bool isTheSingletonInstance() const { return isTheSingleton(_system); }

    /// The resource of that name, created unloaded when there is none. Never null.
    T* createOrRetrieve(ovMemory::StringView name);
    /// The resource of that name, or null.
    T* get(ovMemory::StringView name) const { return ovMemory::find(_resources, name); }
    /// The resource at a position of the order of names; null when out of range.
    T* getByIndex(unsigned int index) const { return ovMemory::getByIndex(_resources, index); }
    /// Calls visit(T&) for every resource in the order of names. It must neither add, rename nor erase any.
    template <typename Visit>
    void forEach(Visit visit) const {
        for (const auto& entry : _resources)
            visit(*entry.second);
    }
    unsigned int getCount() const { return static_cast<unsigned int>(_resources.size()); }
    /// Renames a resource. @return false, nothing changed, when oldName is unknown or newName is taken.
    bool rename(ovMemory::StringView oldName, ovMemory::StringView newName);
    /// Destroys a resource; an unknown name is ignored.
    void erase(ovMemory::StringView name);

private:
    System* _system;
    ovMemory::NameMap<ovMemory::UniquePtr<T>> _resources;
};

template <typename T>
T* NamedResources<T>::createOrRetrieve(ovMemory::StringView name) {
    if (T* existing = get(name))
        return existing;
    ovMemory::UniquePtr<T> created = T::create(_system);
    created->setName(name);
    return _resources.emplace(name, std::move(created)).first->second.get();
}

template <typename T>
bool NamedResources<T>::rename(ovMemory::StringView oldName, ovMemory::StringView newName) {
    const auto entry = _resources.find(oldName);
    if (entry == _resources.end() || get(newName))
        return false;
    auto node = _resources.extract(entry);
    node.key() = newName;
    node.mapped()->setName(newName);
    _resources.insert(std::move(node));
    return true;
}

template <typename T>
void NamedResources<T>::erase(ovMemory::StringView name) {
    const auto entry = _resources.find(name);
    if (entry != _resources.end())
        _resources.erase(entry);
}

} // namespace ovGraphics
