// The owner of materials.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Borrowed.h>
#include <ovVeldris/core/NamedObjects.h>
#include <ovVeldris/materials/Material.h>

namespace ovVeldris {
class MaterialManager;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovVeldris::MaterialManager>;

namespace ovVeldris {

class System;

/// Owns the materials of one System by name. Names are compared byte for byte. The manager never loads or
/// unloads a material.
class OV_API MaterialManager : public ovCommon::MaybeSingletonClass<MaterialManager>,
                               public ovMemory::Borrowable {
public:
    /// The material of that name, created unloaded for the manager's System when there is none.
    /// @return null after one log line when the type is unknown or the name belongs to a material of another
    /// type
    Material* createOrRetrieve(ovMemory::StringView name, MATERIAL_TYPE type);

    /// Takes over a material that was made elsewhere, under a name that need not be its own.
    /// @return the material passed in. When the name was taken, one log line says so, the registered material
    ///         stays, and the one passed in is destroyed: the pointer must not be used then. Null, after one
    ///         log line, when no material is passed in
    Material* record(ovMemory::StringView name, ovMemory::UniquePtr<Material> material);

    /// The material of a name, or null.
    Material* get(ovMemory::StringView name) const { return _materials.get(name); }
    unsigned int getCount() const { return _materials.getCount(); }
    /// The material at a position of the order of names; null when out of range.
    Material* getByIndex(unsigned int index) const { return _materials.getByIndex(index); }
    /// Moves a material to another name, its own name too. When newName is taken by another material, that
    /// one stays and the moved one is destroyed. An unknown oldName is ignored.
    void rename(ovMemory::StringView oldName, ovMemory::StringView newName) {
        _materials.rename(oldName, newName);
    }
    /// Destroys a material; an unknown name is ignored.
    void erase(ovMemory::StringView name) { _materials.relinquish(name); }
    /// Hands a material to the caller; empty for an unknown name.
    ovMemory::UniquePtr<Material> relinquish(ovMemory::StringView name) {
        return _materials.relinquish(name);
    }

private:
    friend class System;
    friend class ovCommon::MaybeSingletonClass<MaterialManager>;

    explicit MaterialManager(System* system);
    explicit MaterialManager(bool);
    ~MaterialManager() override;

    System* _system;
    NamedObjects<Material> _materials;
};

} // namespace ovVeldris
