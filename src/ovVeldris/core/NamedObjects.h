// Named objects of which the first of a name stays: what the managers of materials and complex effects share.
#pragma once

#include <ovMemory/NameMap.h>
#include <utility>

namespace ovVeldris {

/// Owns objects by name. Whatever would put a second object under a taken name destroys that second object.
/// T has setName(StringView).
template <typename T>
class NamedObjects {
public:
    /// The object of a name, or null.
    T* get(ovMemory::StringView name) const { return ovMemory::find(_objects, name); }

    unsigned int getCount() const { return static_cast<unsigned int>(_objects.size()); }

    /// The object at a position of the order of names; null at or beyond the number of objects.
    T* getByIndex(unsigned int index) const { return ovMemory::getByIndex(_objects, index); }

    /// Puts an object under a free name; its own name is left alone. Under a taken name the object is
    /// destroyed.
    void insert(ovMemory::StringView name, ovMemory::UniquePtr<T> object) {
        _objects.try_emplace(ovMemory::String(name), std::move(object));
    }

    /// Moves an object to another name and tells it so. When newName is taken by another object, the moved
    /// one is destroyed. An unknown oldName is ignored.
    void rename(ovMemory::StringView oldName, ovMemory::StringView newName) {
        const ovMemory::String name(newName); // the views may be of the object's own name
        if (ovMemory::UniquePtr<T> object = relinquish(oldName)) {
            object->setName(name);
            insert(name, std::move(object));
        }
    }

    /// Takes an object out; empty for an unknown name.
    ovMemory::UniquePtr<T> relinquish(ovMemory::StringView name) {
        const auto entry = _objects.find(name);
        if (entry == _objects.end())
            return nullptr;
        ovMemory::UniquePtr<T> object = std::move(entry->second);
        _objects.erase(entry);
        return object;
    }

private:
    ovMemory::NameMap<ovMemory::UniquePtr<T>> _objects;
};

/// The message about a name that is wanted for one type and taken by another. Kind is "effect" or "material";
/// the types come as their texts.
inline ovMemory::String typeConflictMessage(ovMemory::StringView kind, ovMemory::StringView name,
                                            ovMemory::StringView requestedType,
                                            ovMemory::StringView existingType) {
    ovMemory::String message = "Requesting ";
    message.append(kind).append(" '").append(name).append("' as ").append(requestedType);
    message.append(" but it already exists as ").append(existingType);
    return message.append(". Preventing override and returning nullptr.");
}

} // namespace ovVeldris
