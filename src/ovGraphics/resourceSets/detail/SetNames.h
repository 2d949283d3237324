// The names of a set's resources.
#pragma once

#include <map>
#include <ovGraphics/NamedResources.h>

namespace ovGraphics::detail {

/// The resources of one kind that a set keeps, in the order of their names, which are unique.
template <typename T>
class SetNames {
public:
    using Resources = ovMemory::NameMap<T*>;

    /// Adds all that are not hidden.
    void addManaged(const NamedResources<T>& manager) {
        manager.forEach([this](T& resource) {
            if (!resource.getHidden())
                add(&resource);
        });
    }

    /// Adds one that may be known or null, under another name when its own is taken.
    /// @return whether it is new
    bool add(T* resource) {
        if (!resource || _names.contains(resource))
            return false;
        const ovMemory::String wanted(resource->getName().empty() ? "unnamed" : resource->getName());
        ovMemory::String name = wanted;
        for (unsigned int number = 2; _resources.contains(name); ++number)
            name = wanted + " (" + std::to_string(number) + ")";
        _resources.emplace(name, resource);
        _names.emplace(resource, name);
        return true;
    }

    const Resources& get() const { return _resources; }
    /// Empty for null, and for one that is not kept.
    ovMemory::StringView nameOf(const T* resource) const {
        const auto found = _names.find(resource);
        return found == _names.end() ? ovMemory::StringView() : ovMemory::StringView(found->second);
    }

private:
    Resources _resources;
    std::map<const T*, ovMemory::String> _names;
};

} // namespace ovGraphics::detail
