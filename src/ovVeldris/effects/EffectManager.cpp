#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/NamedObjects.h>
#include <ovVeldris/effects/EffectKind.h>
#include <ovVeldris/effects/EffectManager.h>

template class ovCommon::MaybeSingletonClass<ovVeldris::EffectManager>;

namespace ovVeldris {

namespace {

constexpr ovMemory::StringView SENDER = "EffectManager";

} // namespace

EffectManager::EffectManager(System* system)
    : _system(system) {}

EffectManager::EffectManager(bool)
    : EffectManager(System::getInstance()) {}

EffectManager::~EffectManager() = default;

Effect* EffectManager::createOrRetrieve(ovMemory::StringView name, EFFECT_TYPE type) {
    if (Effect* existing = get(name)) {
        // The caller would cast to the type that it asked for, so another kind must not be handed out.
        if (existing->getType() == type)
            return existing;
        logMessage(_system,
                   typeConflictMessage("effect", name, EffectTypeUtils::enumToString(type),
                                       EffectTypeUtils::enumToString(existing->getType())),
                   SENDER);
        return nullptr;
    }
    ovMemory::UniquePtr<Effect> effect = _create(type);
    if (!effect)
        return nullptr;
    effect->setName(name);
    return _effects.emplace(name, std::move(effect)).first->second.get();
}

Effect* EffectManager::record(ovMemory::StringView name, ovMemory::UniquePtr<Effect> effect) {
    if (!effect) {
        logMessage(_system,
                   "Trying to record a null effect as '" + ovMemory::String(name) +
                       "'. Nothing is recorded and nullptr is returned, create the effect first.",
                   SENDER);
        return nullptr;
    }
    const auto existing = _effects.find(name);
    if (existing == _effects.end())
        return _effects.emplace(name, std::move(effect)).first->second.get();
    // The words and the sender are the material manager's: hosts filter both managers' warnings by them.
    logMessage(_system,
               "Trying to record from outside over already registered material named '" +
                   ovMemory::String(name) + "'. Beware the existing material will be erased and freed.",
               "MaterialManager");
    existing->second = std::move(effect);
    return existing->second.get();
}

Effect* EffectManager::get(ovMemory::StringView name) const {
    return ovMemory::find(_effects, name);
}

Effect* EffectManager::getByIndex(unsigned int index) const {
    return ovMemory::getByIndex(_effects, index);
}

void EffectManager::rename(ovMemory::StringView oldName, ovMemory::StringView newName) {
    const auto entry = _effects.find(oldName);
    if (entry == _effects.end())
        return;
    // Held in the node, the new name outlives the effect that may have lent it.
    // Extracted and not copied: the effect keeps its address, which others hold.
    auto node = _effects.extract(entry);
    node.key() = newName;
    node.mapped()->setName(node.key());
    _effects.erase(node.key());
    _effects.insert(std::move(node));
}

void EffectManager::erase(ovMemory::StringView name) {
    const auto entry = _effects.find(name);
    if (entry != _effects.end())
        _effects.erase(entry);
}

ovMemory::UniquePtr<Effect> EffectManager::relinquish(ovMemory::StringView name) {
    const auto entry = _effects.find(name);
    if (entry == _effects.end())
        return nullptr;
    ovMemory::UniquePtr<Effect> effect = std::move(entry->second);
    _effects.erase(entry);
    return effect;
}

ovMemory::UniquePtr<Effect> EffectManager::_create(EFFECT_TYPE type) const {
    if (const EffectKind* kind = findEffectKind(type))
        return kind->create(_system);
    logMessage(_system, "Requested an unknown type of effect, allocation cannot happen. Returning nullptr.",
               SENDER);
    return nullptr;
}

} // namespace ovVeldris
