#include <ovVeldris/complexEffects/ComplexEffectManager.h>

#include <ovVeldris/System.h>
#include <ovVeldris/complexEffects/ComplexEffectKind.h>
#include <ovVeldris/core/LogManager.h>

template class ovCommon::MaybeSingletonClass<ovVeldris::ComplexEffectManager>;

namespace ovVeldris {

ComplexEffectManager::ComplexEffectManager(System* system)
    : _system(system) {}

ComplexEffectManager::ComplexEffectManager(bool)
    : ComplexEffectManager(System::getInstance()) {}

ComplexEffectManager::~ComplexEffectManager() = default;

ComplexEffect* ComplexEffectManager::createOrRetrieve(ovMemory::StringView name, COMPLEX_EFFECT_TYPE type) {
    if (ComplexEffect* const existing = get(name)) {
        if (existing->getType() == type)
            return existing;
        logMessage(_system,
                   typeConflictMessage("effect", name, ComplexEffectTypeUtils::enumToString(type),
                                       ComplexEffectTypeUtils::enumToString(existing->getType())),
                   "EffectManager");
        return nullptr;
    }
    const ComplexEffectKind* kind = findComplexEffectKind(type);
    if (!kind) {
        logMessage(_system,
                   "Requested an unknown type of effect, allocation cannot happen. Returning nullptr.",
                   "EffectManager");
        return nullptr;
    }
    ovMemory::UniquePtr<ComplexEffect> created = kind->create(_system);
    created->setName(name);
    _effects.insert(name, std::move(created));
    return get(name);
}

ComplexEffect* ComplexEffectManager::record(ovMemory::StringView name,
                                            ovMemory::UniquePtr<ComplexEffect> effect) {
    if (!effect) {
        logMessage(_system,
                   "Trying to record no complex effect under '" + ovMemory::String(name) +
                       "'. Nothing is recorded; pass an effect in.",
                   "ComplexEffectManager");
        return nullptr;
    }
    // The words and the sender are part of the interface, although they name another class and tell of an
    // override that does not happen.
    if (get(name))
        logMessage(_system,
                   "Trying to record from outside over already registered complex effect named '" +
                       ovMemory::String(name) + "'. Beware the existing resource will be erased and freed.",
                   "MaterialManager");
    ComplexEffect* const recorded = effect.get();
    _effects.insert(name, std::move(effect));
    return recorded;
}

} // namespace ovVeldris
