// The owner of complex effects.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Borrowed.h>
#include <ovVeldris/complexEffects/ComplexEffect.h>
#include <ovVeldris/core/NamedObjects.h>

namespace ovVeldris {
class ComplexEffectManager;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovVeldris::ComplexEffectManager>;

namespace ovVeldris {

class System;

/// Owns the complex effects of one System by name. Names are compared byte for byte. The manager never loads
/// or unloads an effect.
class OV_API ComplexEffectManager : public ovCommon::MaybeSingletonClass<ComplexEffectManager>,
                                    public ovMemory::Borrowable {
public:
    /// The effect of that name, created unloaded for the manager's System when there is none.
    /// @return null after one log line when the type is unknown or the name belongs to an effect of another
    /// type
    ComplexEffect* createOrRetrieve(ovMemory::StringView name, COMPLEX_EFFECT_TYPE type);

    /// Takes over an effect that was made elsewhere, under a name that need not be its own.
    /// @return the effect passed in. When the name was taken, one log line says so, the registered effect
    ///         stays, and the one passed in is destroyed: the pointer must not be used then. Null, after one
    ///         log line, when no effect is passed in
    ComplexEffect* record(ovMemory::StringView name, ovMemory::UniquePtr<ComplexEffect> effect);

    /// The effect of a name, or null.
    ComplexEffect* get(ovMemory::StringView name) const { return _effects.get(name); }
    /// The effect at a position of an order that stays the same between changes; null when out of range.
    ComplexEffect* getByIndex(unsigned int index) const { return _effects.getByIndex(index); }
    /// Moves an effect to another name, its own name too. When newName is taken by another effect, that one
    /// stays and the moved one is destroyed. An unknown oldName is ignored.
    void rename(ovMemory::StringView oldName, ovMemory::StringView newName) {
        _effects.rename(oldName, newName);
    }
    /// Destroys an effect; an unknown name is ignored.
    void erase(ovMemory::StringView name) { _effects.relinquish(name); }
    /// Hands an effect to the caller; empty for an unknown name.
    ovMemory::UniquePtr<ComplexEffect> relinquish(ovMemory::StringView name) {
        return _effects.relinquish(name);
    }

private:
    friend class System;
    friend class ovCommon::MaybeSingletonClass<ComplexEffectManager>;

    explicit ComplexEffectManager(System* system);
    explicit ComplexEffectManager(bool);
    ~ComplexEffectManager() override;

    System* _system;
    NamedObjects<ComplexEffect> _effects;
};

} // namespace ovVeldris
