#include <ovVeldris/materials/MaterialManager.h>

#include <array>
#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/materials/PbsMaterial.h>

template class ovCommon::MaybeSingletonClass<ovVeldris::MaterialManager>;

namespace ovVeldris {

namespace {

struct Factory {
    MATERIAL_TYPE type;
    ovMemory::UniquePtr<Material> (*create)(System* system);
};

// One row a kind that can be created.
constexpr std::array FACTORIES = {
    Factory{MATERIAL_TYPE::PBS,
            [](System* system) -> ovMemory::UniquePtr<Material> { return PbsMaterial::create(system); }}};

ovMemory::UniquePtr<Material> create(System* system, MATERIAL_TYPE type) {
    for (const Factory& factory : FACTORIES)
        if (factory.type == type)
            return factory.create(system);
    logMessage(system, "Requested an unknown type of material, allocation cannot happen. Returning nullptr.",
               "MaterialManager");
    return nullptr;
}

} // namespace

MaterialManager::MaterialManager(System* system)
    : _system(system) {}

MaterialManager::MaterialManager(bool)
    : MaterialManager(System::getInstance()) {}

MaterialManager::~MaterialManager() = default;

Material* MaterialManager::createOrRetrieve(ovMemory::StringView name, MATERIAL_TYPE type) {
    if (Material* const existing = get(name)) {
        // The one that is there wins: others may hold it, so that replacing it behind their back would change
        // what they draw.
        if (existing->getType() == type)
            return existing;
        logMessage(_system,
                   typeConflictMessage("material", name, MaterialTypeUtils::enumToString(type),
                                       MaterialTypeUtils::enumToString(existing->getType())),
                   "MaterialManager");
        return nullptr;
    }
    ovMemory::UniquePtr<Material> created = create(_system, type);
    if (!created)
        return nullptr;
    created->setName(name);
    _materials.insert(name, std::move(created));
    return get(name);
}

Material* MaterialManager::record(ovMemory::StringView name, ovMemory::UniquePtr<Material> material) {
    if (!material) {
        logMessage(_system,
                   "Trying to record no material under '" + ovMemory::String(name) +
                       "'. Nothing is recorded; pass a material in.",
                   "MaterialManager");
        return nullptr;
    }
    // The words are part of the interface, although the override that they tell of does not happen.
    if (get(name))
        logMessage(_system,
                   "Trying to record from outside over already registered material named '" +
                       ovMemory::String(name) + "'. Beware the existing material will be erased and freed.",
                   "MaterialManager");
    Material* const recorded = material.get();
    _materials.insert(name, std::move(material));
    return recorded;
}

} // namespace ovVeldris
