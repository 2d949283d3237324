// The effects of a system, by name.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/NameMap.h>
#include <ovVeldris/effects/Effect.h>

namespace ovVeldris {
class EffectManager;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovVeldris::EffectManager>;

namespace ovVeldris {

class System;

/// Owns effects by name. A system creates its manager in initialize() and destroys it in shutdown(), while
/// the graphics system still runs; getInstance() is the manager of the System singleton.
///
/// Names are compared byte for byte. Names passed in may be those of the effects concerned.
class OV_API EffectManager : public ovCommon::MaybeSingletonClass<EffectManager>,
                             public ovMemory::Borrowable {
public:
    /// The effect of that name and type, created unloaded when there is none of that name.
    /// @return null after one log line when the name belongs to an effect of another type, which stays, or
    ///         when no effect of that type can be created
    Effect* createOrRetrieve(ovMemory::StringView name, EFFECT_TYPE type);

    /// Takes over an effect made elsewhere under a name; the effect's own name does not change. An effect
    /// that had the name is destroyed after one log line.
    /// @return the effect; null after one log line when it is null, and then nothing changes
    Effect* record(ovMemory::StringView name, ovMemory::UniquePtr<Effect> effect);

    /// The effect of that name, or null.
    Effect* get(ovMemory::StringView name) const;
    /// The effect at a position of an order that is stable between changes; null when out of range.
    Effect* getByIndex(unsigned int index) const;

    /// Gives an effect another name, its own and its shader's too. An effect that had the new name is
    /// destroyed. An unknown old name is ignored.
    void rename(ovMemory::StringView oldName, ovMemory::StringView newName);

    /// Destroys an effect, which unloads it; an unknown name is ignored.
    void erase(ovMemory::StringView name);

    /// Takes an effect out and hands it to the caller; null for an unknown name.
    ovMemory::UniquePtr<Effect> relinquish(ovMemory::StringView name);

private:
    friend class System;
    friend class ovCommon::MaybeSingletonClass<EffectManager>;

    explicit EffectManager(System* system);
    /// Of the System singleton, which is created when missing.
    explicit EffectManager(bool);
    ~EffectManager() override;

    ovMemory::UniquePtr<Effect> _create(EFFECT_TYPE type) const;

    System* _system;
    ovMemory::NameMap<ovMemory::UniquePtr<Effect>> _effects;
};

} // namespace ovVeldris
